#pragma once

#include "hid/channel/IHIDDeviceClient.h"

namespace orbelantine {

/// Does nothing and reports success; never connected.
class IHIDDeviceClient::Dummy final : public IHIDDeviceClient {
  public:
    [[nodiscard]] error_code connect(const std::string& address) override;
    void disconnect() override;
    void forceDisconnect() override;
    [[nodiscard]] bool isConnected() override;
    void sendReport(const std::uint8_t* data, std::size_t size) override;
    [[nodiscard]] error_code virtualCableUnplug() override;
};

} // namespace orbelantine
