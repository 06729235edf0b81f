#pragma once

#include "hid/channel/IBluetoothHIDDeviceClient.h"

namespace orbelantine {

/// Does nothing: type 0, every name accepted.
class IBluetoothHIDDeviceClient::Dummy final : public IBluetoothHIDDeviceClient {
  public:
    virtual ~Dummy() = default;
    [[nodiscard]] std::uint32_t getType() override;
    [[nodiscard]] bool setLocalDeviceName(const std::string& name) override;
    void restoreLocalDeviceName() override;
};

} // namespace orbelantine
