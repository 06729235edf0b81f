#pragma once

#include "core/common/types/linux/FileDescriptor.h"
#include "ipc/pipe/linux/PipeEnd.h"

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>

namespace orbelantine {

/// The process at the other end of a pipe. The system's descriptor of it stays that process's when
/// the number goes to another.
class PeerProcess {
  public:
    /// 87 where the process `id` is not at the other end, or is no more.
    [[nodiscard]] static std::uint32_t open(const std::shared_ptr<PipeEnd>& pipe, std::uint32_t id,
                                            std::shared_ptr<PeerProcess>& process);
    PeerProcess(FileDescriptor process, pid_t id, std::weak_ptr<PipeEnd> pipe);

    [[nodiscard]] int descriptor() const { return mProcess.get(); }

    /// A path to the executable itself, whatever becomes of its file, as long as the pipe is open.
    [[nodiscard]] std::uint32_t executable(std::wstring& path) const;

  private:
    const FileDescriptor mProcess;
    const pid_t mId;
    const std::weak_ptr<PipeEnd> mPipe;
};

} // namespace orbelantine
