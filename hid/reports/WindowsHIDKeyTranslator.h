#pragma once

#include "hid/reports/IHIDKeyTranslator.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>

namespace orbelantine {

class KVStore;

/// The keys of a Windows computer, by tables that are built once.
class WindowsHIDKeyTranslator : public IHIDKeyTranslator {
  public:
    /// Reads the boolean "apple": whether the phone takes an Apple keyboard's keys.
    explicit WindowsHIDKeyTranslator(const KVStore& configuration);

    [[nodiscard]] HIDTypes::eUSBHIDKeyCodes translateScanCode(std::int32_t index) override;
    [[nodiscard]] HIDTypes::eUSBHIDKeyCodes translateVirtualKey(std::int32_t index) override;
    [[nodiscard]] BluetoothHIDClientTypes::eUSBHIDConsumerKeyCodes
    translateConsumerKey(std::int32_t index) override;
    [[nodiscard]] BluetoothHIDClientTypes::eUSBHIDSystemControlKeyCodes
    translateSystemControlKey(std::int32_t index) override;

  private:
    using Table = boost::shared_ptr<std::uint32_t[]>;

    void buildKeyMaps(bool apple);
    void buildConsumerKeyMap(bool apple);
    void buildSystemControlKeyMap(bool apple);

    Table mKeys;
    Table mVirtualKeys;
    Table mConsumerKeys;
    Table mSystemControlKeys;
};

} // namespace orbelantine
