#include "ipc/pipe/linux/PeerProcess.h"

#include "core/common/errors/ErrorCode.h"
#include "core/common/errors/linux/LinuxErrors.h"
#include "core/common/log/Log.h"
#include "ipc/pipe/linux/PipeSocket.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>

#include <array>
#include <cerrno>
#include <utility>

namespace orbelantine {

namespace {

// SO_PEERPIDFD, which Debian's headers don't have yet.
constexpr int kPeerProcessOption = 77;

FileDescriptor openPeer(int socket, pid_t id) {
    int process = -1;
    socklen_t size = sizeof(process);
    if (::getsockopt(socket, SOL_SOCKET, kPeerProcessOption, &process, &size) == 0)
        return FileDescriptor(process);
    // A kernel before 6.5 only has the number to offer.
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, id, 0)));
}

bool isAlive(int process) {
    pollfd end{process, POLLIN, 0};
    return ::poll(&end, 1, 0) == 0;
}

std::string linkTarget(const std::string& link) {
    std::array<char, 4096> target{};
    const auto size = ::readlink(link.c_str(), target.data(), target.size());
    return {target.data(), size > 0 ? static_cast<std::size_t>(size) : 0};
}

} // namespace

std::uint32_t PeerProcess::open(const std::shared_ptr<PipeEnd>& pipe, std::uint32_t id,
                                std::shared_ptr<PeerProcess>& process) {
    std::uint32_t peer = 0;
    if (const auto error = pipe_socket::peerProcessId(pipe->descriptor(), peer))
        return error;
    if (peer != id)
        return win32::kErrorInvalidParameter;
    FileDescriptor opened = openPeer(pipe->descriptor(), static_cast<pid_t>(id));
    if (!opened)
        return errno == ESRCH || errno == EINVAL ? win32::kErrorInvalidParameter
                                                 : windowsError(errno);
    process = std::make_shared<PeerProcess>(std::move(opened), static_cast<pid_t>(id), pipe);
    return win32::kErrorSuccess;
}

PeerProcess::PeerProcess(FileDescriptor process, pid_t id, std::weak_ptr<PipeEnd> pipe)
    : mProcess(std::move(process))
    , mId(id)
    , mPipe(std::move(pipe)) {}

std::uint32_t PeerProcess::executable(std::wstring& path) const {
    const std::shared_ptr<PipeEnd> pipe = mPipe.lock();
    if (!pipe)
        return win32::kErrorInvalidHandle;
    const std::string link = "/proc/" + std::to_string(mId) + "/exe";
    FileDescriptor file(::open(link.c_str(), O_RDONLY | O_CLOEXEC));
    const int error = errno;
    // Another process of that number can only be if this one has ended.
    if (!isAlive(mProcess.get()))
        return win32::kErrorNotFound;
    if (!file)
        return windowsError(error);
    const std::string opened = "/proc/self/fd/" + std::to_string(file.get());
    ORB_LOG(kLogDebug, "%s() process %d runs %s.", static_cast<int>(mId),
            linkTarget(opened).c_str());
    path.assign(opened.begin(), opened.end());
    pipe->keep(std::move(file));
    return win32::kErrorSuccess;
}

} // namespace orbelantine
