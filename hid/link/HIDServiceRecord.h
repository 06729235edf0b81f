#pragma once

#include <boost/smart_ptr/shared_array.hpp>

#include <cstdint>
#include <string>

namespace orbelantine {

class IBluetoothSDPController;

/// The service record that makes the computer a HID device: what HIDDescriptor.h says of it.
struct HIDServiceRecord {
    HIDServiceRecord();
    /// The controller's own code; 0 is success.
    [[nodiscard]] std::int32_t addTo(IBluetoothSDPController& controller) const;

    std::string serviceName;
    std::string serviceDescription;
    std::string providerName;
    std::uint16_t subclass;
    boost::shared_array<std::uint8_t> descriptor;
    std::uint32_t descriptorSize;
};

} // namespace orbelantine
