#pragma once

#include "core/common/errors/ErrorCode.h"
#include "tools/virtual_phone/driver/Address.h"

#include <boost/endian/conversion.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// What those share who stand behind a device socket; docs/driver-protocol.md draws the packets.
namespace orbelantine::device {

using Bytes = std::span<const std::uint8_t>;
using Reply = std::vector<std::uint8_t>;

inline constexpr std::size_t kCodeSize = 4;
/// The code of a write; any other is a request.
inline constexpr std::uint32_t kWrite = 0;
/// The longest packet that makes sense, with much room to spare.
inline constexpr std::size_t kMaxPacket = 1024;
/// The answer to get type.
inline constexpr std::uint32_t kRelativeMouse = 2;

// The system's own error numbers, as DeviceIoControl would give them.
using win32::kErrorBusy;
using win32::kErrorConnectionRefused;
using win32::kErrorInvalidFunction;
using win32::kErrorInvalidParameter;
using win32::kErrorNotFound;

template <typename T>
[[nodiscard]] Reply littleEndian(T value) {
    Reply bytes(sizeof(T));
    boost::endian::endian_store<T, sizeof(T), boost::endian::order::little>(bytes.data(), value);
    return bytes;
}

[[nodiscard]] inline Reply makeReply(std::uint32_t error, Bytes output) {
    Reply reply(sizeof(error) + output.size());
    boost::endian::store_little_u32(reply.data(), error);
    std::ranges::copy(output, reply.begin() + sizeof(error));
    return reply;
}

/// Input of the connect request.
//  0 .. 5                     6 7  8 9
//  address, last byte first   psm  channel: 2 for interrupt, 1 for any other
struct ConnectInput {
    static constexpr std::size_t kSize = 10;

    phone::Address address;
    std::uint16_t psm;
    std::uint16_t channel;

    /// `bytes` are kSize.
    explicit ConnectInput(Bytes bytes)
        : psm(boost::endian::load_little_u16(&bytes[6]))
        , channel(boost::endian::load_little_u16(&bytes[8])) {
        std::reverse_copy(bytes.begin(), bytes.begin() + 6, address.bytes.begin());
    }

    [[nodiscard]] bool channelFitsPsm() const {
        constexpr std::uint16_t kInterruptPsm = 19;
        return channel == (psm == kInterruptPsm ? 2 : 1);
    }
};

} // namespace orbelantine::device
