#include "ipc/pipe/linux/ClientPipe.h"

#include "core/common/errors/ErrorCode.h"
#include "core/common/errors/linux/LinuxErrors.h"
#include "core/common/log/Log.h"
#include "ipc/pipe/linux/PipeFiles.h"
#include "ipc/pipe/linux/PipeFolder.h"
#include "ipc/pipe/linux/PipeLock.h"
#include "ipc/pipe/linux/PipeSocket.h"
#include "ipc/pipe/linux/PipeWire.h"
#include "ipc/pipe/linux/PollUntil.h"

#include <fcntl.h>
#include <sys/inotify.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace orbelantine {

namespace {

constexpr std::chrono::milliseconds kGreetingTimeout{2000};

std::uint32_t findPipe(const std::string& text, FileDescriptor& folder, PipeFiles& files) {
    if (const auto error = filesOfPipe(text, files))
        return error;
    return openPipeFolder(folder);
}

/// Tells when a pipe's file in the folder may have come or gone.
FileDescriptor watchFolder(int folder) {
    FileDescriptor watch(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    const std::string path = "/proc/self/fd/" + std::to_string(folder);
    ::inotify_add_watch(watch.get(), path.c_str(), IN_MOVED_TO | IN_DELETE);
    return watch;
}

void drain(int watch) {
    std::array<char, 4096> events{};
    while (::read(watch, events.data(), events.size()) > 0) {
    }
}

std::uint32_t notConnected(int error, int folder, const PipeFiles& files) {
    if (error == EAGAIN)
        return win32::kErrorPipeBusy;
    if (error != ENOENT && error != ECONNREFUSED)
        return windowsError(error);
    return PipeLock::isTaken(folder, files.lock) ? win32::kErrorPipeBusy
                                                 : win32::kErrorFileNotFound;
}

std::uint32_t awaitGreeting(int socket) {
    pollfd input{socket, POLLIN, 0};
    if (pollUntil({&input, 1}, std::chrono::steady_clock::now() + kGreetingTimeout) <= 0)
        return win32::kErrorSemTimeout;
    std::array<unsigned char, 2> packet{};
    const auto size = ::recv(socket, packet.data(), packet.size(), 0);
    if (size <= 0)
        return win32::kErrorPipeBusy;
    return size == 1 && packet[0] == pipe_wire::kGreeting ? win32::kErrorSuccess
                                                          : win32::kErrorInvalidData;
}

} // namespace

std::uint32_t waitForPipe(const std::string& name, std::uint32_t timeout) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout);
    FileDescriptor folder;
    PipeFiles files;
    if (findPipe(name, folder, files))
        return win32::kErrorSuccess;
    FileDescriptor watch;
    for (;;) {
        if (!PipeLock::isTaken(folder.get(), files.lock))
            return win32::kErrorFileNotFound;
        if (pipe_socket::isThere(folder.get(), files.socket))
            return win32::kErrorSuccess;
        // What came before the watch is found by one more look.
        if (!watch) {
            watch = watchFolder(folder.get());
            if (watch)
                continue;
        }
        pollfd change{watch.get(), POLLIN, 0};
        if (pollUntil({&change, 1}, deadline) <= 0)
            return win32::kErrorSemTimeout;
        drain(watch.get());
    }
}

std::uint32_t joinPipe(const std::string& name, std::shared_ptr<PipeEnd>& pipe) {
    FileDescriptor folder;
    PipeFiles files;
    if (const auto error = findPipe(name, folder, files))
        return error;
    FileDescriptor socket;
    if (const int error = pipe_socket::connectTo(folder.get(), files.socket, socket))
        return notConnected(error, folder.get(), files);
    if (!pipe_socket::isPeerOurs(socket.get())) {
        ORB_LOG(kLogWarning, "%s() another user's process holds the name of the pipe.");
        return win32::kErrorAccessDenied;
    }
    if (const auto error = awaitGreeting(socket.get()))
        return error;
    if (::fcntl(socket.get(), F_SETFL, 0) != 0)
        return windowsError(errno);
    pipe = std::make_shared<PipeEnd>(std::move(socket));
    return win32::kErrorSuccess;
}

} // namespace orbelantine
