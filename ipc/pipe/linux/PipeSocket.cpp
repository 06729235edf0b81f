#include "ipc/pipe/linux/PipeSocket.h"

#include "core/common/errors/ErrorCode.h"
#include "core/common/errors/linux/LinuxErrors.h"
#include "ipc/pipe/linux/PipeWire.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace orbelantine::pipe_socket {

namespace {

constexpr int kBacklog = 4;

/// By way of the descriptor, since a socket's address has no room for a folder of any length.
bool addressAt(int folder, const std::string& file, sockaddr_un& address) {
    const std::string path = "/proc/self/fd/" + std::to_string(folder) + "/" + file;
    if (path.size() >= sizeof(address.sun_path))
        return false;
    address = {};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.data(), path.size());
    return true;
}

FileDescriptor newSocket() {
    return FileDescriptor(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

template <class Call>
int callAt(Call call, int socket, int folder, const std::string& file) {
    sockaddr_un address{};
    if (!addressAt(folder, file, address))
        return ENAMETOOLONG;
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    return pipe_wire::uninterrupted([&] { return call(socket, generic, sizeof(address)); }) == 0
               ? 0
               : errno;
}

std::uint32_t clearName(int folder, const std::string& file) {
    struct stat status {};

    if (::fstatat(folder, file.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT ? win32::kErrorSuccess : windowsError(errno);
    if (!S_ISSOCK(status.st_mode))
        return win32::kErrorAccessDenied;
    FileDescriptor socket;
    if (connectTo(folder, file, socket) != ECONNREFUSED)
        return win32::kErrorPipeBusy;
    return ::unlinkat(folder, file.c_str(), 0) == 0 ? win32::kErrorSuccess : windowsError(errno);
}

bool credentialsOf(int socket, ucred& peer) {
    socklen_t size = sizeof(peer);
    return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0;
}

bool isListening(int socket) {
    int listening = 0;
    socklen_t size = sizeof(listening);
    return ::getsockopt(socket, SOL_SOCKET, SO_ACCEPTCONN, &listening, &size) == 0 &&
           listening != 0;
}

} // namespace

std::uint32_t listenAt(int folder, const PipeFiles& files, FileDescriptor& listener) {
    if (const auto error = clearName(folder, files.socket))
        return error;
    ::unlinkat(folder, files.unready.c_str(), 0);
    FileDescriptor made = newSocket();
    // The file gets the mode that the socket has.
    if (!made || ::fchmod(made.get(), S_IRUSR | S_IWUSR) != 0)
        return windowsError(errno);
    if (const int error = callAt(::bind, made.get(), folder, files.unready))
        return windowsError(error);
    // Whoever finds the name finds a socket that listens.
    if (::listen(made.get(), kBacklog) != 0 ||
        ::renameat(folder, files.unready.c_str(), folder, files.socket.c_str()) != 0) {
        const auto error = windowsError(errno);
        ::unlinkat(folder, files.unready.c_str(), 0);
        return error;
    }
    listener = std::move(made);
    return win32::kErrorSuccess;
}

bool isThere(int folder, const std::string& file) {
    struct stat status {};

    return ::fstatat(folder, file.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISSOCK(status.st_mode);
}

int connectTo(int folder, const std::string& file, FileDescriptor& socket) {
    FileDescriptor made = newSocket();
    if (!made)
        return errno;
    if (const int error = callAt(::connect, made.get(), folder, file))
        return error;
    socket = std::move(made);
    return 0;
}

bool isPeerOurs(int socket) {
    ucred peer{};
    return credentialsOf(socket, peer) && peer.uid == ::geteuid();
}

std::uint32_t peerProcessId(int socket, std::uint32_t& id) {
    ucred peer{};
    // A listener's are its own.
    if (isListening(socket) || !credentialsOf(socket, peer) || peer.pid <= 0)
        return win32::kErrorNotFound;
    id = static_cast<std::uint32_t>(peer.pid);
    return win32::kErrorSuccess;
}

bool isPeerGone(int socket) {
    pollfd state{socket, POLLRDHUP, 0};
    return ::poll(&state, 1, 0) > 0;
}

} // namespace orbelantine::pipe_socket
