#include "bluetooth/linux/DeviceSocket.h"

#include "bluetooth/linux/DeviceFolder.h"
#include "core/common/errors/ErrorCode.h"
#include "core/common/errors/linux/LinuxErrors.h"

#include <endian.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <vector>

namespace orbelantine {

namespace {

constexpr std::uint32_t kWriteCode = 0;
constexpr int kMostUnasked = 64;
// A report and its code go out in one piece: the system takes that much faster than two parts.
constexpr std::size_t kSmallPayload = 60;

template <class Call>
auto untilUninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

// 4 bytes little-endian error number, then the output
DriverApi::Error readReply(const std::vector<char>& reply, std::size_t size, void* output,
                           std::size_t outputSize, std::uint32_t& returned) {
    std::uint32_t error = 0;
    if (size < sizeof(error))
        return win32::kErrorInvalidData;
    std::memcpy(&error, reply.data(), sizeof(error));
    if (error)
        return le32toh(error);
    const std::size_t answered = size - sizeof(error);
    if (answered > outputSize)
        return win32::kErrorMoreData;
    if (answered > 0)
        std::memcpy(output, reply.data() + sizeof(error), answered);
    returned = static_cast<std::uint32_t>(answered);
    return win32::kErrorSuccess;
}

} // namespace

DeviceSocket::DeviceSocket(int fd)
    : mFd(fd) {}

DriverApi::Error DeviceSocket::connect(const std::wstring& path,
                                       std::unique_ptr<DeviceSocket>& socket) {
    const std::string name = deviceFile(path).string();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.size() >= sizeof(address.sun_path))
        return win32::kErrorFilenameTooLong;
    std::memcpy(address.sun_path, name.data(), name.size());

    // Whoever doesn't accept would keep a blocking call for ever.
    auto made = std::make_unique<DeviceSocket>(
        ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (made->fd() < 0)
        return windowsError(errno);
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    if (untilUninterrupted([&] { return ::connect(made->fd(), generic, sizeof(address)); }) < 0)
        return errno == EAGAIN ? win32::kErrorBusy : windowsError(errno);
    if (::fcntl(made->fd(), F_SETFL, 0) < 0)
        return windowsError(errno);
    socket = std::move(made);
    return win32::kErrorSuccess;
}

DriverApi::Error DeviceSocket::request(std::uint32_t code, const void* input, std::size_t inputSize,
                                       void* output, std::size_t outputSize,
                                       std::uint32_t& returned) {
    const std::lock_guard lock(mRequestMutex);
    discardUnasked();
    if (const auto error = send(code, input, inputSize))
        return error;
    // One byte more than the longest reply, to notice one that is too long.
    std::vector<char> reply(sizeof(std::uint32_t) + outputSize + 1);
    const auto size =
        untilUninterrupted([&] { return ::recv(fd(), reply.data(), reply.size(), 0); });
    if (size < 0)
        return windowsError(errno);
    if (size == 0)
        return win32::kErrorDeviceNotConnected;
    return readReply(reply, static_cast<std::size_t>(size), output, outputSize, returned);
}

DriverApi::Error DeviceSocket::write(const void* data, std::size_t size) {
    return send(kWriteCode, data, size);
}

void DeviceSocket::shutDown() {
    ::shutdown(fd(), SHUT_RDWR);
}

DriverApi::Error DeviceSocket::send(std::uint32_t code, const void* data, std::size_t size) {
    return size <= kSmallPayload ? sendWhole(code, data, size) : sendInParts(code, data, size);
}

DriverApi::Error DeviceSocket::sendWhole(std::uint32_t code, const void* data, std::size_t size) {
    struct {
        std::uint32_t header;
        std::byte payload[kSmallPayload];
    } packet;

    packet.header = htole32(code);
    if (size > 0)
        std::memcpy(packet.payload, data, size);
    const auto sent = untilUninterrupted(
        [&] { return ::send(fd(), &packet, sizeof(packet.header) + size, MSG_NOSIGNAL); });
    return sent < 0 ? windowsError(errno) : win32::kErrorSuccess;
}

DriverApi::Error DeviceSocket::sendInParts(std::uint32_t code, const void* data, std::size_t size) {
    std::uint32_t header = htole32(code);
    iovec parts[] = {{&header, sizeof(header)}, {const_cast<void*>(data), size}};
    msghdr packet{};
    packet.msg_iov = parts;
    packet.msg_iovlen = std::size(parts);
    const auto sent = untilUninterrupted([&] { return ::sendmsg(fd(), &packet, MSG_NOSIGNAL); });
    return sent < 0 ? windowsError(errno) : win32::kErrorSuccess;
}

// Packets that answer no request would be taken for the next one's reply.
void DeviceSocket::discardUnasked() {
    char first = 0;
    for (int i = 0; i<kMostUnasked&& ::recv(fd(), &first, 1, MSG_DONTWAIT)> 0; ++i) {
    }
}

} // namespace orbelantine
