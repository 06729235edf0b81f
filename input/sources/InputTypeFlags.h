#pragma once

#include <cstdint>

namespace orbelantine {

/// Bits of InputFormat::typeFlags.
/// @{

/// The phone takes absolute positions, and characters where a key gives one.
inline constexpr std::uint32_t kAbsoluteInput = 1;
/// A relative mouse, if the HID device is one; an absolute one otherwise.
inline constexpr std::uint32_t kRelativeInput = 2;

/// @}

} // namespace orbelantine
