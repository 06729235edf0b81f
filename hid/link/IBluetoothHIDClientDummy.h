#pragma once

#include "hid/link/IBluetoothHIDClient.h"

namespace orbelantine {

/// Does nothing and reports success; never connected.
class IBluetoothHIDClient::Dummy final : public IBluetoothHIDClient {
  public:
    void disconnect() override;
    [[nodiscard]] error_code connect(const std::string& address) override;
    void forceDisconnect() override;
    [[nodiscard]] bool isConnected() override;
    [[nodiscard]] error_code virtualCableUnplug() override;
};

} // namespace orbelantine
