#pragma once

#include "core/common/types/linux/FileDescriptor.h"
#include "ipc/pipe/Overlapped.h"

#include <mutex>
#include <utility>
#include <vector>

namespace orbelantine {

/// One end of a pipe, and what lives as long as it is open. Any thread may call.
class PipeEnd {
  public:
    explicit PipeEnd(FileDescriptor socket)
        : mSocket(std::move(socket)) {}

    virtual ~PipeEnd() = default;
    PipeEnd(const PipeEnd&) = delete;
    PipeEnd& operator=(const PipeEnd&) = delete;

    [[nodiscard]] int descriptor() const { return mSocket.get(); }

    void keep(FileDescriptor file) {
        const std::lock_guard lock(mKeptMutex);
        mKept.push_back(std::move(file));
    }

  private:
    const FileDescriptor mSocket;
    std::mutex mKeptMutex;
    std::vector<FileDescriptor> mKept;
};

} // namespace orbelantine
