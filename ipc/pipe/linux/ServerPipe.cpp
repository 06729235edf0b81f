#include "ipc/pipe/linux/ServerPipe.h"

#include "core/common/errors/ErrorCode.h"
#include "core/common/errors/linux/LinuxErrors.h"
#include "core/common/log/Log.h"
#include "ipc/pipe/PipeApi.h"
#include "ipc/pipe/linux/LastPipeError.h"
#include "ipc/pipe/linux/PipeFolder.h"
#include "ipc/pipe/linux/PipeSocket.h"
#include "ipc/pipe/linux/PipeWire.h"
#include "ipc/pipe/linux/PollUntil.h"

#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <utility>

namespace orbelantine {

std::uint32_t ServerPipe::make(const std::string& name, std::shared_ptr<ServerPipe>& pipe) {
    PipeFiles files;
    FileDescriptor folder;
    PipeLock lock;
    FileDescriptor listener;
    if (const auto error = filesOfPipe(name, files))
        return error;
    if (const auto error = openPipeFolder(folder))
        return error;
    if (const auto error = PipeLock::take(folder.get(), files.lock, lock))
        return error;
    if (const auto error = pipe_socket::listenAt(folder.get(), files, listener)) {
        lock.release(folder.get(), files.lock);
        return error;
    }
    pipe = std::make_shared<ServerPipe>(std::move(folder), std::move(files), std::move(lock),
                                        std::move(listener));
    return win32::kErrorSuccess;
}

ServerPipe::ServerPipe(FileDescriptor folder, PipeFiles files, PipeLock lock,
                       FileDescriptor listener)
    : PipeEnd(std::move(listener))
    , mFolder(std::move(folder))
    , mFiles(std::move(files))
    , mLock(std::move(lock))
    , mResult(win32::kErrorIoIncomplete) {}

ServerPipe::~ServerPipe() {
    ::unlinkat(mFolder.get(), mFiles.socket.c_str(), 0);
    mLock.release(mFolder.get(), mFiles.lock);
}

std::uint32_t ServerPipe::connect(std::shared_ptr<AcceptEvent> event) {
    const std::lock_guard lock(mMutex);
    mEvent = std::move(event);
    eventfd_t ignored = 0;
    ::eventfd_read(mEvent->descriptor(), &ignored);
    if (mConnected || takeClient())
        return mConnected ? win32::kErrorPipeConnected : mResult;
    mWaiting = true;
    mResult = win32::kErrorIoIncomplete;
    return win32::kErrorIoPending;
}

std::uint32_t ServerPipe::wait(const AcceptEvent& event, std::uint32_t timeout) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout);
    for (;;) {
        std::array<pollfd, 2> files{{{event.descriptor(), POLLIN, 0}, {-1, POLLIN, 0}}};
        {
            const std::lock_guard lock(mMutex);
            if (mWaiting)
                files[1].fd = descriptor();
        }
        const int ready = pollUntil(files, deadline);
        if (ready == 0)
            return PipeApi::kWaitTimeout;
        if (ready < 0) {
            keptPipeError(windowsError(errno));
            return PipeApi::kWaitFailed;
        }
        const std::lock_guard lock(mMutex);
        if (mWaiting)
            static_cast<void>(takeClient());
        eventfd_t ignored = 0;
        if (!mWaiting && ::eventfd_read(event.descriptor(), &ignored) == 0)
            return PipeApi::kWaitObject;
    }
}

std::uint32_t ServerPipe::result() const {
    const std::lock_guard lock(mMutex);
    return mResult;
}

void ServerPipe::cancel() {
    const std::lock_guard lock(mMutex);
    if (mWaiting)
        finish(win32::kErrorOperationAborted);
}

PipeHandle ServerPipe::event() const {
    const std::lock_guard lock(mMutex);
    return mEvent ? mEvent->descriptor() : 0;
}

/// Whether the wait for a client is over, be it by a failure.
bool ServerPipe::takeClient() {
    for (;;) {
        const FileDescriptor client(::accept4(descriptor(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!client && (errno == EINTR || errno == ECONNABORTED))
            continue;
        if (!client && errno == EAGAIN)
            return false;
        if (!client) {
            finish(windowsError(errno));
            return true;
        }
        if (!mayTake(client.get()))
            continue;
        // With the listener those go who wait in line behind this client.
        ::unlinkat(mFolder.get(), mFiles.socket.c_str(), 0);
        mConnected = ::dup3(client.get(), descriptor(), O_CLOEXEC) >= 0;
        const std::uint32_t result = mConnected ? win32::kErrorSuccess : windowsError(errno);
        if (mConnected)
            ::send(client.get(), &pipe_wire::kGreeting, 1, MSG_NOSIGNAL | MSG_DONTWAIT);
        finish(result);
        return true;
    }
}

bool ServerPipe::mayTake(int client) const {
    if (pipe_socket::isPeerGone(client))
        return false;
    if (pipe_socket::isPeerOurs(client))
        return true;
    ORB_LOG(kLogWarning, "%s() refused a process of another user.");
    return false;
}

void ServerPipe::finish(std::uint32_t result) {
    mWaiting = false;
    mResult = result;
    ::eventfd_write(mEvent->descriptor(), 1);
}

} // namespace orbelantine
