#include "bluetooth/peers/BluetoothPeerManager.h"

#include "bluetooth/IBluetoothImpl.h"
#include "bluetooth/peers/BluetoothStateMachine.h"
#include "core/common/errors/Exception.h"
#include "core/common/run/WorkerThread.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <boost/throw_exception.hpp>

#include <utility>

namespace orbelantine {

BluetoothPeerManager::BluetoothPeerManager()
    : BluetoothPeerManager(makeBluetooth) {}

BluetoothPeerManager::BluetoothPeerManager(BluetoothMaker makeImpl, IClock& clock)
    : mMakeImpl(std::move(makeImpl))
    , mClock(clock) {}

BluetoothPeerManager::~BluetoothPeerManager() {
    Machine last = exchange({});
    if (!last)
        return;
    last->retire();
    if (last->isOnWorker())
        endElsewhere(std::move(last));
}

BluetoothPeerManager::Machine BluetoothPeerManager::exchange(Machine next) {
    const std::lock_guard lock(mMutex);
    return std::exchange(mMachine, std::move(next));
}

void BluetoothPeerManager::start(bool registerIncoming) {
    refuseOnWorker();
    const std::lock_guard life(mLife);
    const auto next = boost::make_shared<BluetoothStateMachine>(*this, mMakeImpl, mClock);
    if (const Machine last = exchange(next))
        last->retire();
    next->enterStart(registerIncoming);
}

void BluetoothPeerManager::stop() {
    refuseOnWorker();
    const std::lock_guard life(mLife);
    if (const Machine last = current()) {
        last->enterFini();
        exchange({});
        last->retire();
    }
    onStarted.disconnect_all_slots();
    onPeersUpdated.disconnect_all_slots();
    onPairRequest.disconnect_all_slots();
    onPairedByUser.disconnect_all_slots();
    onPairFinished.disconnect_all_slots();
    onUnpairFinished.disconnect_all_slots();
}

BluetoothPeerManager::Machine BluetoothPeerManager::current() const {
    const std::lock_guard lock(mMutex);
    return mMachine;
}

BluetoothPeerManager::Machine BluetoothPeerManager::machine() const {
    Machine running = current();
    if (!running)
        BOOST_THROW_EXCEPTION(Exception("The peer manager is not started: call start first"));
    return running;
}

void BluetoothPeerManager::refuseOnWorker() const {
    if (BluetoothStateMachine::isServing(*this))
        BOOST_THROW_EXCEPTION(Exception("This would wait for the thread that it is called on: a "
                                        "callback of the peer manager calls what returns at once, "
                                        "or leaves the call to another thread"));
}

template <class Task>
auto BluetoothPeerManager::ask(Task task) const {
    refuseOnWorker();
    const Machine asked = machine();
    return asked->postAndWait([&](const auto&) { return task(*asked); });
}

void BluetoothPeerManager::refreshPeers() {
    machine()->refreshPeers();
}

bool BluetoothPeerManager::isBluetoothOn() {
    return ask([](auto& asked) { return asked.checkBluetoothOn(); });
}

std::wstring BluetoothPeerManager::getLocalName() {
    return ask([](auto& asked) { return asked.impl().getLocalName(); });
}

CMacAddress BluetoothPeerManager::getLocalAddress() {
    return ask([](auto& asked) { return asked.impl().getLocalAddress(); });
}

std::int32_t BluetoothPeerManager::getHidDriverVersion() {
    return ask([](auto& asked) { return asked.impl().getHidDriverVersion(); });
}

error_code BluetoothPeerManager::verifyHidDriverVersion() {
    return ask([](auto& asked) { return asked.impl().verifyHidDriverVersion(); });
}

error_code BluetoothPeerManager::verifyHandsfreeDriverVersion() {
    return ask([](auto& asked) { return asked.impl().verifyHandsfreeDriverVersion(); });
}

error_code BluetoothPeerManager::enableDiscoverable() {
    refuseOnWorker();
    return machine()->enableDiscoverable();
}

error_code BluetoothPeerManager::disableDiscoverable() {
    refuseOnWorker();
    return machine()->disableDiscoverable();
}

void BluetoothPeerManager::enablePeerScans(bool enable) {
    machine()->enablePeerScans(enable);
}

void BluetoothPeerManager::startDiscovery() {
    machine()->startDiscovery();
}

void BluetoothPeerManager::stopDiscovery() {
    machine()->stopDiscovery();
}

void BluetoothPeerManager::pairPeer(const boost::shared_ptr<BluetoothPeer>& peer) {
    machine()->pair(peer);
}

void BluetoothPeerManager::authPair(const boost::shared_ptr<BluetoothPeer>& peer) {
    machine()->authPair(peer);
}

void BluetoothPeerManager::cancelPair() {
    machine()->cancelPair();
}

void BluetoothPeerManager::unpair(const boost::shared_ptr<BluetoothPeer>& peer) {
    machine()->unpair(peer);
}

std::vector<boost::shared_ptr<BluetoothPeer>> BluetoothPeerManager::getPeers() {
    return ask([](auto& asked) { return asked.peers(); });
}

} // namespace orbelantine
