#include "bluetooth/peers/BluetoothStateMachine.h"

#include "bluetooth/IBluetoothImpl.h"
#include "bluetooth/peers/BluetoothStates.h"
#include "core/common/errors/GenericError.h"

namespace orbelantine {

namespace {

thread_local const BluetoothPeerManager* served = nullptr;

} // namespace

BluetoothStateMachine::BluetoothStateMachine(BluetoothPeerManager& manager,
                                             const BluetoothMaker& makeImpl, IClock& clock)
    : StateMachine(clock)
    , mManager(manager)
    , mImpl(makeImpl()) {}

BluetoothStateMachine::~BluetoothStateMachine() {
    // The base ends the process if this is the worker.
    if (!onWorker())
        retire();
}

void BluetoothStateMachine::enterStart(bool registerIncoming) {
    postAndWait([this, registerIncoming](const auto&) {
        served = &mManager;
        mRegisterIncoming = registerIncoming;
        changeState<BluetoothStateStart>();
    });
}

void BluetoothStateMachine::enterFini() {
    // What the backend still tells is dropped from here on.
    mRunning = false;
    postAndWait([this](const auto&) {
        mLastError = {};
        changeState<BluetoothStateFini>();
    });
}

void BluetoothStateMachine::retire() {
    mRunning = false;
    mRetired = true;
    dropEvents();
    if (onWorker())
        served = nullptr;
    else
        postAndWait([this](const auto&) { cancelTimers(); });
}

bool BluetoothStateMachine::isServing(const BluetoothPeerManager& manager) {
    return served == &manager;
}

error_code BluetoothStateMachine::askState(error_code (BluetoothState::*event)()) {
    return postAndWait([event](const auto& current) {
        return current ? (current.get()->*event)() : genericError(generic::kFunctionNotSupported);
    });
}

void BluetoothStateMachine::refreshPeers() {
    postEvent(&BluetoothState::refreshPeers);
}

error_code BluetoothStateMachine::enableDiscoverable() {
    return askState(&BluetoothState::enableDiscoverable);
}

error_code BluetoothStateMachine::disableDiscoverable() {
    return askState(&BluetoothState::disableDiscoverable);
}

void BluetoothStateMachine::startDiscovery() {
    postEvent(&BluetoothState::startDiscovery);
}

void BluetoothStateMachine::stopDiscovery() {
    postEvent(&BluetoothState::stopDiscovery);
}

void BluetoothStateMachine::discoverOnce() {
    postEvent(&BluetoothState::discoverOnce);
}

void BluetoothStateMachine::schedulePeerScan() {
    postEvent(&BluetoothState::schedulePeerScan);
}

void BluetoothStateMachine::enablePeerScans(bool enable) {
    postEvent(&BluetoothState::enablePeerScans, enable);
}

void BluetoothStateMachine::pair(const PeerPointer& peer) {
    postEvent(&BluetoothState::pair, peer);
}

void BluetoothStateMachine::pairRequest(const PeerPointer& peer) {
    postEvent(&BluetoothState::pairRequest, peer);
}

void BluetoothStateMachine::pairedByUser(const PeerPointer& peer) {
    postEvent(&BluetoothState::pairedByUser, peer);
}

void BluetoothStateMachine::authPair(const PeerPointer& peer) {
    postEvent(&BluetoothState::authPair, peer);
}

void BluetoothStateMachine::pairFinished(const PeerPointer& peer, error_code ec) {
    postEvent(&BluetoothState::pairFinished, peer, ec);
}

void BluetoothStateMachine::cancelPair() {
    postEvent(&BluetoothState::cancelPair);
}

void BluetoothStateMachine::unpair(const PeerPointer& peer) {
    postEvent(&BluetoothState::unpair, peer);
}

void BluetoothStateMachine::unpairFinished(const PeerPointer& peer, error_code ec) {
    postEvent(&BluetoothState::unpairFinished, peer, ec);
}

} // namespace orbelantine
