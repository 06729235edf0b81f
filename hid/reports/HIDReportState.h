#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace orbelantine {

/// What is held down on one device between its reports. Belongs to the thread that feeds it events.
struct HIDReportState {
    /// Bit 0 left, bit 1 right, bit 2 middle.
    std::uint8_t mouseButtons = 0;
    /// Counts digitizer reports.
    std::uint16_t scanCounter = 0;
    /// Bit i is usage 224 + i.
    std::uint8_t modifiers = 0;
    /// Usages held; 0 is a free place.
    std::array<std::uint8_t, 6> keys{};
};

/// Sets or clears the bit of a button event of IInputMediaBufferMouse; other events change nothing.
void applyMouseButton(std::uint8_t& buttons, std::uint8_t eventType);

/// Sets or clears the bit of a modifier's usage; other usages change nothing.
void applyModifier(std::uint8_t& modifiers, std::uint8_t usage, bool down);

/// A key down takes the first free place and is lost if there is none; a key up frees every place
/// that holds the usage.
void applyKey(std::uint8_t* keys, std::size_t count, std::uint8_t usage, bool down);

} // namespace orbelantine
