#include "hid/channel/IBluetoothHIDDeviceClientDummy.h"

#include "core/common/OSAL.h"
#include "core/common/log/Log.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IBluetoothHIDDeviceClient, IBluetoothHIDDeviceClient::Dummy,
                  "IBluetoothHIDDeviceClient::Dummy");

std::uint32_t IBluetoothHIDDeviceClient::Dummy::getType() {
    return 0;
}

bool IBluetoothHIDDeviceClient::Dummy::setLocalDeviceName(const std::string&) {
    ORB_TRACED();
    return true;
}

void IBluetoothHIDDeviceClient::Dummy::restoreLocalDeviceName() {
    ORB_TRACED();
}

} // namespace orbelantine
