#pragma once

#include "hid/link/IBluetoothHIDClient.h"

#include <boost/smart_ptr/shared_ptr.hpp>

namespace orbelantine {

class HIDMediaReportConverter;
class IBluetoothHIDDeviceClient;
class IHIDDeviceClient;
class KVStore;
struct HIDReportState;

/// Turns each input buffer into a report of the local device's type and sends it, without a lock or
/// an allocation of its own.
class BluetoothHIDClient final : public IBluetoothHIDClient {
  public:
    /// Takes its parts from the factory, as the configuration says.
    explicit BluetoothHIDClient(const KVStore& configuration);
    ~BluetoothHIDClient() override;
    BluetoothHIDClient(const BluetoothHIDClient&) = delete;
    BluetoothHIDClient& operator=(const BluetoothHIDClient&) = delete;

    void onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) override;

    /// Also forgets the keys and buttons held.
    void disconnect() override;
    [[nodiscard]] error_code connect(const std::string& address) override;
    void forceDisconnect() override;
    [[nodiscard]] bool isConnected() override;
    [[nodiscard]] error_code virtualCableUnplug() override;

  private:
    boost::shared_ptr<HIDReportState> mState;
    boost::shared_ptr<IBluetoothHIDDeviceClient> mDeviceClient;
    boost::shared_ptr<HIDMediaReportConverter> mConverter;
    // Goes first, as its signal calls back into this object.
    boost::shared_ptr<IHIDDeviceClient> mDevice;
};

} // namespace orbelantine
