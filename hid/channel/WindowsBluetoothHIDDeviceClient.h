#pragma once

#include "hid/channel/IBluetoothHIDDeviceClient.h"

namespace orbelantine {

class DriverApi;
class LocalRadioApi;

/// The local stack under the private driver. One thread at a time.
class WindowsBluetoothHIDDeviceClient : public IBluetoothHIDDeviceClient {
  public:
    /// Asks the driver for its type; blocks while it answers.
    WindowsBluetoothHIDDeviceClient();
    WindowsBluetoothHIDDeviceClient(DriverApi& driverApi, LocalRadioApi& radioApi);
    virtual ~WindowsBluetoothHIDDeviceClient() = default;

    [[nodiscard]] std::uint32_t getType() override;
    [[nodiscard]] bool setLocalDeviceName(const std::string& name) override;
    /// Only for a device type of 0.
    void restoreLocalDeviceName() override;

    void queryHidType();
    /// Any thread: ends the driver's answering in whatever constructor waits for it.
    static void breakQueries();
    /// The name of the first local radio; false leaves `name` alone.
    [[nodiscard]] bool getRadioDeviceName(std::wstring& name);

  protected:
    std::uint32_t mHidType = 0;

  private:
    [[nodiscard]] std::wstring getInstanceID();

    DriverApi& mDriverApi;
    LocalRadioApi& mRadioApi;
};

} // namespace orbelantine
