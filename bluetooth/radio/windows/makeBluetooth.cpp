#include "bluetooth/radio/makeBluetooth.h"

#include "bluetooth/radio/BluetoothApi.h"
#include "bluetooth/radio/BluetoothWindows.h"

namespace orbelantine {

std::unique_ptr<IBluetoothImpl> makeBluetooth() {
    return std::make_unique<BluetoothWindows>(BluetoothApi::system());
}

} // namespace orbelantine
