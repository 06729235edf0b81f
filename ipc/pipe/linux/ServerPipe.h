#pragma once

#include "ipc/pipe/linux/PipeEnd.h"
#include "ipc/pipe/linux/PipeFiles.h"
#include "ipc/pipe/linux/PipeLock.h"

#include <cstdint>
#include <memory>
#include <string>

namespace orbelantine {

class ServerPipe;

/// What tells of a client. It goes with its pipe, if nobody closes it before. Any thread may call.
class AcceptEvent {
  public:
    explicit AcceptEvent(FileDescriptor file)
        : mFile(std::move(file)) {}

    [[nodiscard]] int descriptor() const { return mFile.get(); }

    void belongTo(std::weak_ptr<ServerPipe> pipe) {
        const std::lock_guard lock(mMutex);
        mPipe = std::move(pipe);
    }

    [[nodiscard]] std::shared_ptr<ServerPipe> pipe() const {
        const std::lock_guard lock(mMutex);
        return mPipe.lock();
    }

  private:
    const FileDescriptor mFile;
    mutable std::mutex mMutex;
    std::weak_ptr<ServerPipe> mPipe;
};

/// The only instance of a named pipe: a listener, and from its first client on, under the same
/// descriptor, the connection to that. The name is taken until it goes. Any thread may call.
class ServerPipe final : public PipeEnd {
  public:
    [[nodiscard]] static std::uint32_t make(const std::string& name,
                                            std::shared_ptr<ServerPipe>& pipe);
    ServerPipe(FileDescriptor folder, PipeFiles files, PipeLock lock, FileDescriptor listener);
    ~ServerPipe() override;

    /// 535 when a client is there already, else 997.
    [[nodiscard]] std::uint32_t connect(std::shared_ptr<AcceptEvent> event);
    /// As PipeApi::waitForSingleObject, for the event given to connect.
    [[nodiscard]] std::uint32_t wait(const AcceptEvent& event, std::uint32_t timeout);
    /// How connect went; 996 as long as it goes on.
    [[nodiscard]] std::uint32_t result() const;
    /// Ends a connect that goes on: 995.
    void cancel();
    /// That of the last connect, or 0.
    [[nodiscard]] PipeHandle event() const;

  private:
    [[nodiscard]] bool takeClient();
    [[nodiscard]] bool mayTake(int client) const;
    void finish(std::uint32_t result);

    const FileDescriptor mFolder;
    const PipeFiles mFiles;
    PipeLock mLock;

    mutable std::mutex mMutex;
    std::shared_ptr<AcceptEvent> mEvent;
    std::uint32_t mResult;
    bool mWaiting = false;
    bool mConnected = false;
};

} // namespace orbelantine
