#include "bluetooth/peers/BluetoothStates.h"

#include "core/common/errors/GenericError.h"
#include "core/common/log/Log.h"
#include "core/common/run/IDelayTimer.h"
#include "core/common/run/ThreadName.h"

namespace orbelantine {

namespace {

constexpr std::chrono::seconds kPairingTime(20);

/// A state's operation in the log.
class TracedStep {
  public:
    TracedStep(const BluetoothState& state, const char* operation)
        : mName("orbelantine::" + state.getName() + "::" + operation)
        , mTraced(mName.c_str()) {}

  private:
    const std::string mName;
    const TracedFunction mTraced;
};

} // namespace

void TracedBluetoothState::onEnter() {
    const TracedStep traced(*this, "onEnter");
    enter();
}

void TracedBluetoothState::onExit() {
    const TracedStep traced(*this, "onExit");
    leave();
}

void BluetoothStateStart::enter() {
    setThreadName("BluetoothStateMachineThread");
    if (const error_code ec = owner().doInit()) {
        owner().setLastError(ec);
        owner().changeState<BluetoothStateFini>();
    } else {
        owner().changeState<BluetoothStateIdle>();
    }
}

void AcceptingBluetoothState::pair(const PeerPointer& peer) {
    owner().setLocalPeer(peer);
    owner().changeState<BluetoothStatePair>();
}

void AcceptingBluetoothState::pairRequest(const PeerPointer& peer) {
    owner().doSetPairingRequestDevice(peer);
    owner().changeState<BluetoothStatePairRequest>();
}

void AcceptingBluetoothState::unpair(const PeerPointer& peer) {
    owner().setLocalPeer(peer);
    owner().changeState<BluetoothStateUnpair>();
}

void BluetoothStateIdle::enter() {
    owner().doRescanCachedPeers();
}

void BluetoothStateIdle::leave() {
    owner().cancelScanTimer();
}

void BluetoothStateIdle::refreshPeers() {
    owner().setPeersUpdated();
    owner().doRescanCachedPeers();
}

error_code BluetoothStateIdle::enableDiscoverable() {
    return owner().doEnableDiscoverable();
}

error_code BluetoothStateIdle::disableDiscoverable() {
    return owner().doDisableDiscoverable();
}

void BluetoothStateIdle::startDiscovery() {
    owner().changeState<BluetoothStateDiscovery>();
}

void BluetoothStateIdle::schedulePeerScan() {
    if (owner().peerScansEnabled())
        owner().doSchedulePeerScan();
}

void BluetoothStateIdle::enablePeerScans(bool enable) {
    ORB_LOG(kLogDebug, "%s() enable=%d", enable);
    owner().setPeerScansEnabled(enable);
    if (enable)
        owner().schedulePeerScan();
    else
        owner().cancelScanTimer();
}

void BluetoothStateDiscovery::enter() {
    owner().doDiscoverOnce();
}

void BluetoothStateDiscovery::stopDiscovery() {
    owner().changeState<BluetoothStateIdle>();
}

void BluetoothStateDiscovery::discoverOnce() {
    owner().doDiscoverOnce();
}

void TimedBluetoothState::waitUnless(error_code failed) {
    BluetoothStateMachine& machine = owner();
    if (failed) {
        machine.setLastError(failed);
        machine.changeState<BluetoothStatePairFailed>();
        return;
    }
    const auto timeOut = [&machine](const auto&) {
        machine.setLastError(genericError(generic::kTimedOut));
        machine.changeState<BluetoothStatePairFailed>();
    };
    mTimer = machine.postDelayed(timeOut, kPairingTime);
}

void TimedBluetoothState::cancelTimer() {
    if (mTimer)
        mTimer->cancel();
    mTimer.reset();
}

void BluetoothStatePair::enter() {
    waitUnless(owner().doPair());
}

void BluetoothStatePair::leave() {
    cancelTimer();
}

void BluetoothStatePair::pairRequest(const PeerPointer& peer) {
    owner().doSetPairingRequestDevice(peer);
    owner().changeState<BluetoothStatePairRequest>();
}

void BluetoothStatePair::cancelPair() {
    owner().changeState<BluetoothStatePairFailed>();
}

void BluetoothStatePairRequest::enter() {
    owner().doRescanCachedPeers();
    waitUnless(owner().doPairRequest());
}

void BluetoothStatePairRequest::leave() {
    owner().cancelScanTimer();
    cancelTimer();
}

void BluetoothStatePairRequest::pairedByUser(const PeerPointer& peer) {
    owner().doPairedByUser(peer);
    owner().changeState<BluetoothStateIdle>();
}

void BluetoothStatePairRequest::authPair(const PeerPointer& /*peer*/) {
    if (owner().doAuthPair())
        owner().changeState<BluetoothStatePairFailed>();
}

void BluetoothStatePairRequest::pairFinished(const PeerPointer& /*peer*/, error_code ec) {
    if (ec) {
        owner().setLastError(ec);
        owner().changeState<BluetoothStatePairFailed>();
    } else {
        owner().changeState<BluetoothStatePairCompleted>();
    }
}

void BluetoothStatePairRequest::cancelPair() {
    owner().setLastError(genericError(generic::kConnectionAborted));
    owner().changeState<BluetoothStatePairFailed>();
}

void BluetoothStatePairCompleted::enter() {
    owner().doPairFinished({});
    owner().changeState<BluetoothStateIdle>();
}

void BluetoothStatePairFailed::enter() {
    owner().doPairFinished(owner().lastError());
    owner().changeState<BluetoothStateIdle>();
}

void BluetoothStateUnpair::enter() {
    if (const error_code ec = owner().doUnpair()) {
        owner().setLastError(ec);
        owner().changeState<BluetoothStateUnpairFailed>();
    }
}

void BluetoothStateUnpair::unpairFinished(const PeerPointer& /*peer*/, error_code ec) {
    if (ec) {
        owner().setLastError(ec);
        owner().changeState<BluetoothStateUnpairFailed>();
    } else {
        owner().changeState<BluetoothStateUnpairCompleted>();
    }
}

void BluetoothStateUnpairCompleted::enter() {
    owner().doUnpairFinished({});
    owner().changeState<BluetoothStateIdle>();
}

void BluetoothStateUnpairFailed::enter() {
    owner().doUnpairFinished(owner().lastError());
    owner().changeState<BluetoothStateIdle>();
}

void BluetoothStateFini::enter() {
    owner().doFini(owner().lastError());
}

} // namespace orbelantine
