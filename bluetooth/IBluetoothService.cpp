#include "bluetooth/IBluetoothService.h"

#include "core/common/run/FireSafely.h"

namespace orbelantine {

// An override may keep it. NOLINTNEXTLINE(performance-unnecessary-value-param)
void IBluetoothService::forceDisconnect(Completion completion) {
    complete(completion, error_code());
}

void IBluetoothService::dispatchOnDisconnected(error_code ec) {
    fireSafely(onDisconnected, ec);
}

} // namespace orbelantine
