#include "bluetooth/IBluetoothService.h"

namespace orbelantine {

// An override may keep it. NOLINTNEXTLINE(performance-unnecessary-value-param)
void IBluetoothService::forceDisconnect(Completion completion) {
    complete(completion, error_code());
}

void IBluetoothService::dispatchOnDisconnected(error_code ec) {
    onDisconnected(ec);
}

} // namespace orbelantine
