#pragma once

#include <cstdint>

namespace orbelantine::phone {

/// Usages of the keyboard page that a text field acts on.
namespace key {
inline constexpr std::uint8_t kBackspace = 42;
inline constexpr std::uint8_t kCapsLock = 57;
inline constexpr std::uint8_t kHome = 74;
inline constexpr std::uint8_t kDelete = 76;
inline constexpr std::uint8_t kEnd = 77;
inline constexpr std::uint8_t kRight = 79;
inline constexpr std::uint8_t kLeft = 80;
inline constexpr std::uint8_t kDown = 81;
inline constexpr std::uint8_t kUp = 82;
inline constexpr std::uint8_t kNumLock = 83;
inline constexpr std::uint8_t kKeypad1 = 89;
inline constexpr std::uint8_t kKeypadPoint = 99;
} // namespace key

/// The character of a key on a US keyboard, Enter and Tab included; 0 for a key without one.
[[nodiscard]] char usCharacter(std::uint8_t usage, bool shift, bool capsLock);

/// What the key is while Num Lock is off: the keypad's digits and point steer the caret.
[[nodiscard]] std::uint8_t withoutNumLock(std::uint8_t usage);

} // namespace orbelantine::phone
