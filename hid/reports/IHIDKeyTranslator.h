#pragma once

#include "hid/reports/HIDUsages.h"

#include <cstdint>

namespace orbelantine {

/// Codes of the computer's keys as codes of the HID usage tables; kNoTranslation for none. The
/// index must be within 0..255. Any thread may ask.
class IHIDKeyTranslator {
  public:
    virtual ~IHIDKeyTranslator() = default;

    /// By scan code of set 1, extended codes with bit 7 set.
    [[nodiscard]] virtual HIDTypes::eUSBHIDKeyCodes translateScanCode(std::int32_t index) = 0;
    /// By Windows virtual key code.
    [[nodiscard]] virtual HIDTypes::eUSBHIDKeyCodes translateVirtualKey(std::int32_t index) = 0;
    /// By scan code.
    [[nodiscard]] virtual BluetoothHIDClientTypes::eUSBHIDConsumerKeyCodes
    translateConsumerKey(std::int32_t index) = 0;
    /// By scan code.
    [[nodiscard]] virtual BluetoothHIDClientTypes::eUSBHIDSystemControlKeyCodes
    translateSystemControlKey(std::int32_t index) = 0;
};

} // namespace orbelantine
