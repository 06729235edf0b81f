#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// What goes between a host and the driver's device.
namespace orbelantine::phone::packet {

using Bytes = std::vector<std::uint8_t>;

inline const Bytes kConnectControl = {0, 0, 0x22, 0, 0x55, 0x44, 0x33, 0x22, 0x11, 0, 17, 0, 1, 0};
inline const Bytes kConnectInterrupt = {0,    0,    0x22, 0,  0x55, 0x44, 0x33,
                                        0x22, 0x11, 0,    19, 0,    2,    0};
inline const Bytes kGetType = {0x04, 0, 0x22, 0};
inline const Bytes kGetVersion = {0x08, 0, 0x22, 0};
inline const Bytes kIsConnected = {0x0C, 0, 0x22, 0};
inline const Bytes kTypeA = {0, 0, 0, 0, 0xA1, 2, 0, 0, 4, 0, 0, 0, 0, 0};
inline const Bytes kRelease = {0, 0, 0, 0, 0xA1, 2, 0, 0, 0, 0, 0, 0, 0, 0};
inline const Bytes kUnplug = {0, 0, 0, 0, 0x15};

inline const Bytes kSuccess = {0, 0, 0, 0};
inline const Bytes kRelativeMouse = {0, 0, 0, 0, 2, 0, 0, 0};
inline const Bytes kVersion4 = {0, 0, 0, 0, 4, 0};
inline const Bytes kStands = {0, 0, 0, 0, 1, 0, 0, 0};
inline const Bytes kGone = {0, 0, 0, 0, 0, 0, 0, 0};
inline const Bytes kHangUp = {};

/// The reply with this Windows error.
inline Bytes failure(std::uint16_t number) {
    return {static_cast<std::uint8_t>(number & 0xFF), static_cast<std::uint8_t>(number >> 8), 0, 0};
}

inline Bytes changed(Bytes bytes, std::size_t place, std::uint8_t byte) {
    bytes.at(place) = byte;
    return bytes;
}

inline Bytes resized(Bytes bytes, std::size_t size) {
    bytes.resize(size);
    return bytes;
}

} // namespace orbelantine::phone::packet
