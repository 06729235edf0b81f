#pragma once

#include "bluetooth/Guid.h"

#include <cstddef>
#include <cstdint>

/// What the private driver understands; docs/driver-protocol.md draws it.
namespace orbelantine::driver {

/// Device interface classes of the HID driver, in the order in which they are tried.
inline constexpr Guid kHidInterfaces[] = {
    {0x4DF52311, 0x7AA8, 0x4D3C, {0xB5, 0x8B, 0x37, 0x49, 0x82, 0x6E, 0x10, 0xA6}},
    {0x38B034E0, 0xB760, 0x4587, {0x94, 0x8F, 0x14, 0x69, 0x1D, 0x54, 0x1E, 0x2B}},
};

/// Device interface class of the hands-free driver.
inline constexpr Guid kHandsfreeInterface = {
    0xA1D3ED72, 0xCEBF, 0x4C80, {0xBC, 0xB8, 0xC3, 0x92, 0x36, 0xA2, 0xBF, 0x9A}};

/// Opens without the system's buffers: FILE_FLAG_WRITE_THROUGH and FILE_FLAG_NO_BUFFERING.
inline constexpr std::uint32_t kUnbuffered = 0xA0000000;

/// Of what is written on such a handle; a driver may ask for as much.
inline constexpr std::size_t kBufferAlignment = 8;

inline constexpr std::uint32_t kConnect = 0x220000;
inline constexpr std::uint32_t kGetType = 0x220004;
inline constexpr std::uint32_t kGetVersion = 0x220008;
inline constexpr std::uint32_t kIsConnected = 0x22000C;

inline constexpr int kExpectedHidVersion = 4;

/// The hands-free driver's.
inline constexpr std::uint32_t kGetHandsfreeVersion = 0x222018;
inline constexpr int kExpectedHandsfreeVersion = 1;

/// PSMs of the HID profile.
inline constexpr std::uint16_t kControlPsm = 17;
inline constexpr std::uint16_t kInterruptPsm = 19;

} // namespace orbelantine::driver
