#include "hid/link/IBluetoothSDPControllerDummy.h"

#include "core/common/OSAL.h"
#include "core/common/log/Log.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IBluetoothSDPController, IBluetoothSDPController::Dummy,
                  "IBluetoothSDPController::Dummy");

std::int32_t IBluetoothSDPController::Dummy::start() {
    ORB_TRACED();
    return 0;
}

std::int32_t IBluetoothSDPController::Dummy::stop() {
    ORB_TRACED();
    return 0;
}

std::int32_t IBluetoothSDPController::Dummy::addHIDDeviceRecord(const std::string&,
                                                                const std::string&,
                                                                const std::string&, std::uint16_t,
                                                                const std::uint8_t*,
                                                                std::uint32_t) {
    ORB_TRACED();
    return 0;
}

std::int32_t IBluetoothSDPController::Dummy::removeHIDDeviceRecord() {
    ORB_TRACED();
    return 0;
}

} // namespace orbelantine
