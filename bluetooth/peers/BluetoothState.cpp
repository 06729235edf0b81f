#include "bluetooth/peers/BluetoothState.h"

#include "core/common/errors/GenericError.h"
#include "core/common/run/StateEvent.h"

namespace orbelantine {

void BluetoothState::onNotProcessed(const char* event) const {
    logNotProcessed(kEventNotProcessed, ORB_FUNCTION_NAME, event, *this);
}

bool BluetoothState::isBluetoothOn() {
    onNotProcessed(ORB_FUNCTION_NAME);
    return true;
}

error_code BluetoothState::enableDiscoverable() {
    onNotProcessed(ORB_FUNCTION_NAME);
    return genericError(generic::kFunctionNotSupported);
}

error_code BluetoothState::disableDiscoverable() {
    onNotProcessed(ORB_FUNCTION_NAME);
    return genericError(generic::kFunctionNotSupported);
}

#define ORB_EVENT(event)                                                                           \
    void BluetoothState::event {                                                                   \
        onNotProcessed(ORB_FUNCTION_NAME);                                                         \
    }

ORB_EVENT(refreshPeers())
ORB_EVENT(startDiscovery())
ORB_EVENT(stopDiscovery())
ORB_EVENT(discoverOnce())
ORB_EVENT(schedulePeerScan())
ORB_EVENT(enablePeerScans(bool /*enable*/))
ORB_EVENT(pair(const PeerPointer& /*peer*/))
ORB_EVENT(pairRequest(const PeerPointer& /*peer*/))
ORB_EVENT(pairedByUser(const PeerPointer& /*peer*/))
ORB_EVENT(authPair(const PeerPointer& /*peer*/))
ORB_EVENT(pairFinished(const PeerPointer& /*peer*/, error_code /*ec*/))
ORB_EVENT(cancelPair())
ORB_EVENT(unpair(const PeerPointer& /*peer*/))
ORB_EVENT(unpairFinished(const PeerPointer& /*peer*/, error_code /*ec*/))

#undef ORB_EVENT

} // namespace orbelantine
