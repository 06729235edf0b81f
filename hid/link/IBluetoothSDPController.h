#pragma once

#include <cstdint>
#include <string>

namespace orbelantine {

/// Publishes the computer's service records. The results are the implementation's own codes; only
/// 0, success, has a meaning here.
class IBluetoothSDPController {
  public:
    class Dummy;

    virtual ~IBluetoothSDPController() = default;
    [[nodiscard]] virtual std::int32_t start() = 0;
    [[nodiscard]] virtual std::int32_t stop() = 0;
    /// `descriptor` is a HID report descriptor of `size` bytes, valid during the call.
    [[nodiscard]] virtual std::int32_t
    addHIDDeviceRecord(const std::string& serviceName, const std::string& serviceDescription,
                       const std::string& providerName, std::uint16_t subclass,
                       const std::uint8_t* descriptor, std::uint32_t size) = 0;
    [[nodiscard]] virtual std::int32_t removeHIDDeviceRecord() = 0;
};

} // namespace orbelantine
