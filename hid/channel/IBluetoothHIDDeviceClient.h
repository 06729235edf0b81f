#pragma once

#include <cstdint>
#include <string>

namespace orbelantine {

/// What a HID client needs to know of, and do to, the local Bluetooth stack.
class IBluetoothHIDDeviceClient {
  public:
    class Dummy;

    /// Selects the report format and the mouse source; 2 is a relative mouse.
    [[nodiscard]] virtual std::uint32_t getType() = 0;
    /// Changes the radio's name as peers see it; blocks. False if any step failed.
    [[nodiscard]] virtual bool setLocalDeviceName(const std::string& name) = 0;
    /// Gives the radio the computer's own name again.
    virtual void restoreLocalDeviceName() = 0;

  protected:
    // Destroyed as what it was made, by the shared pointer that owns it.
    ~IBluetoothHIDDeviceClient() = default;
};

} // namespace orbelantine
