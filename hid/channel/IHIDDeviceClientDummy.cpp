#include "hid/channel/IHIDDeviceClientDummy.h"

#include "core/common/OSAL.h"
#include "core/common/log/Log.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IHIDDeviceClient, IHIDDeviceClient::Dummy, "IHIDDeviceClient::Dummy");

error_code IHIDDeviceClient::Dummy::connect(const std::string&) {
    ORB_TRACED();
    return {};
}

void IHIDDeviceClient::Dummy::disconnect() {
    ORB_TRACED();
}

void IHIDDeviceClient::Dummy::forceDisconnect() {
    ORB_TRACED();
}

bool IHIDDeviceClient::Dummy::isConnected() {
    return false;
}

void IHIDDeviceClient::Dummy::sendReport(const std::uint8_t*, std::size_t) {}

error_code IHIDDeviceClient::Dummy::virtualCableUnplug() {
    ORB_TRACED();
    return {};
}

} // namespace orbelantine
