#include "hid/link/IBluetoothHIDClientDummy.h"

#include "core/common/OSAL.h"
#include "core/common/log/Log.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IBluetoothHIDClient, IBluetoothHIDClient::Dummy, "IBluetoothHIDClient::Dummy");

void IBluetoothHIDClient::Dummy::disconnect() {
    ORB_TRACED();
}

error_code IBluetoothHIDClient::Dummy::connect(const std::string&) {
    ORB_TRACED();
    return {};
}

void IBluetoothHIDClient::Dummy::forceDisconnect() {
    ORB_TRACED();
}

bool IBluetoothHIDClient::Dummy::isConnected() {
    return false;
}

error_code IBluetoothHIDClient::Dummy::virtualCableUnplug() {
    ORB_TRACED();
    return {};
}

} // namespace orbelantine
