#pragma once

#include "core/common/types/linux/FileDescriptor.h"
#include "tools/virtual_phone/driver/Address.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace orbelantine::bridge {

/// The system calls towards the radio, one operation for each. Each returns an errno, 0 for
/// success; no call waits. A socket is closed by its owner, and polled as any other.
class L2capApi {
  public:
    using Error = int;

    virtual ~L2capApi() = default;

    /// 0 if a radio is there and switched on; ENODEV if none is.
    [[nodiscard]] virtual Error radio() = 0;

    /// A new socket for one channel.
    [[nodiscard]] virtual Error socket(FileDescriptor& socket) = 0;
    /// EINPROGRESS: the socket polls as writable at the end, and error() tells how it came out.
    [[nodiscard]] virtual Error connect(int socket, const phone::Address& peer,
                                        std::uint16_t psm) = 0;
    /// The socket's own error, which is forgotten then.
    [[nodiscard]] virtual Error error(int socket) = 0;
    /// One packet, whole, or EAGAIN.
    [[nodiscard]] virtual Error send(int socket, std::span<const std::uint8_t> packet) = 0;
    /// One packet, its end cut off where the buffer ends. No bytes: empty, or the peer's hang-up.
    [[nodiscard]] virtual Error receive(int socket, std::span<std::uint8_t> buffer,
                                        std::size_t& size) = 0;

    /// The kernel's Bluetooth; lives until the process ends.
    static L2capApi& system();
};

} // namespace orbelantine::bridge
