#pragma once

#include "hid/link/IBluetoothSDPController.h"

namespace orbelantine {

/// Publishes nothing and reports success.
class IBluetoothSDPController::Dummy final : public IBluetoothSDPController {
  public:
    [[nodiscard]] std::int32_t start() override;
    [[nodiscard]] std::int32_t stop() override;
    [[nodiscard]] std::int32_t
    addHIDDeviceRecord(const std::string& serviceName, const std::string& serviceDescription,
                       const std::string& providerName, std::uint16_t subclass,
                       const std::uint8_t* descriptor, std::uint32_t size) override;
    [[nodiscard]] std::int32_t removeHIDDeviceRecord() override;
};

} // namespace orbelantine
