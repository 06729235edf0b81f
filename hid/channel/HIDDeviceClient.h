#pragma once

#include "hid/channel/IHIDDeviceClient.h"

#include <atomic>
#include <memory>

namespace orbelantine {

class DriverApi;
class IClock;

/// The HID connection through the private driver: the control channel (PSM 17) and the interrupt
/// channel (PSM 19). Any thread may call; calls wait for each other, and onDisconnected fires
/// within them, on the calling thread.
class HIDDeviceClient : public IHIDDeviceClient {
  public:
    /// Hides the inherited signal, which this class never raises.
    boost::signals2::signal<void(boost::system::error_code)> onDisconnected;

    HIDDeviceClient();
    HIDDeviceClient(DriverApi& api, IClock& clock);
    /// A connected client drops the slots of its own onDisconnected and disconnects.
    ~HIDDeviceClient() override;
    HIDDeviceClient(const HIDDeviceClient&) = delete;
    HIDDeviceClient& operator=(const HIDDeviceClient&) = delete;

    [[nodiscard]] error_code connect(const std::string& address) override;
    void disconnect() override;
    void forceDisconnect() override;
    /// Without waiting for calls in progress.
    [[nodiscard]] bool isConnected() override;
    /// A failure raises onDisconnected, with a success code.
    void sendReport(const std::uint8_t* data, std::size_t size) override;
    [[nodiscard]] error_code virtualCableUnplug() override;

  private:
    struct Link;

    std::atomic<bool> mConnected = false;
    std::unique_ptr<Link> mLink;
};

} // namespace orbelantine
