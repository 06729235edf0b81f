#pragma once

#include <cstdint>

namespace orbelantine {

/// The answer for a key that has no code.
inline constexpr std::uint32_t kNoTranslation = ~std::uint32_t{0};

namespace HIDTypes {

/// Usages of the keyboard page (0x07) of the USB HID Usage Tables; those named here are the ones
/// with a meaning beyond their key.
enum eUSBHIDKeyCodes : std::uint32_t {
    kKeyLeftControl = 224,
    kKeyRightGui = 231,
    kKeyNone = kNoTranslation,
};

} // namespace HIDTypes

namespace BluetoothHIDClientTypes {

/// Usages of the consumer page (0x0C).
enum eUSBHIDConsumerKeyCodes : std::uint32_t { kConsumerNone = kNoTranslation };

/// System control codes of the generic desktop page (0x01): 129 power down, 130 sleep, 131 wake up.
enum eUSBHIDSystemControlKeyCodes : std::uint32_t { kSystemControlNone = kNoTranslation };

} // namespace BluetoothHIDClientTypes

} // namespace orbelantine
