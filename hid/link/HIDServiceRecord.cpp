#include "hid/link/HIDServiceRecord.h"

#include "hid/link/IBluetoothSDPController.h"
#include "hid/reports/HIDDescriptor.h"

#include <algorithm>

namespace orbelantine {

HIDServiceRecord::HIDServiceRecord()
    : serviceName(kHidServiceName)
    , serviceDescription(kHidServiceDescription)
    , providerName(kHidProviderName)
    , subclass(kHidSubclass)
    , descriptor(new std::uint8_t[kHidReportDescriptorSize])
    , descriptorSize(kHidReportDescriptorSize) {
    std::copy(kHidReportDescriptor.begin(), kHidReportDescriptor.end(), descriptor.get());
}

std::int32_t HIDServiceRecord::addTo(IBluetoothSDPController& controller) const {
    return controller.addHIDDeviceRecord(serviceName, serviceDescription, providerName, subclass,
                                         descriptor.get(), descriptorSize);
}

} // namespace orbelantine
