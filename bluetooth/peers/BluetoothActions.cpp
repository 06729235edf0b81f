#include "bluetooth/IBluetoothImpl.h"
#include "bluetooth/peers/BluetoothPeerManager.h"
#include "bluetooth/peers/BluetoothStateMachine.h"
#include "core/common/errors/GenericError.h"
#include "core/common/log/Log.h"
#include "core/common/run/IDelayTimer.h"

#include <boost/nowide/convert.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

#include <algorithm>
#include <string>

namespace orbelantine {

namespace {

constexpr std::chrono::seconds kScanPeriod(5);
// In the inquiry's own unit of 1.28 seconds.
constexpr std::uint16_t kInquiryLength = 3;

constexpr bool isRadioOn(error_code ec) {
    return ec.value() != generic::kNetworkDown;
}

constexpr const char* notUnless(bool paired) {
    return paired ? "" : "not ";
}

/// For the log: its name and address. As UTF-8, since a name in another script would end the line.
std::string describe(const BluetoothPeer& peer) {
    return boost::nowide::narrow(peer.name() + L" (" + peer.address().getStdStringAddress() + L")");
}

} // namespace

auto BluetoothStateMachine::slot(Sighting sighting) {
    return [this, sighting](const CMacAddress& address, const std::wstring& name,
                            unsigned long deviceClass) {
        if (!mRunning)
            return;
        enqueue([this, sighting, address, name, deviceClass](const auto&) {
            if (mRunning)
                (this->*sighting)(address, name, static_cast<std::uint32_t>(deviceClass));
        });
    };
}

error_code BluetoothStateMachine::doInit() {
    if (mRegisterIncoming)
        mImpl->onAuthenticationRequest.connect(
            slot(&BluetoothStateMachine::onAuthenticationRequest));
    mImpl->onPeerFound.connect(slot(&BluetoothStateMachine::onPeerFound));
    // Whether the peers' requests are taken is decided by the connection above alone.
    if (const error_code ec = mImpl->start(false)) {
        ORB_LOG(kLogError, "%s: unable to initialize bluetooth implementation");
        return ec;
    }
    mPeersUpdated = true;
    mPeerScansEnabled = true;
    mRunning = true;
    raise(mManager.onStarted, error_code());
    return {};
}

void BluetoothStateMachine::doFini(error_code ec) {
    mRunning = false;
    cancelTimers();
    if (mImpl->isDiscoverable())
        (void)mImpl->disableDiscoverable();
    mImpl->stop();
    if (ec)
        raise(mManager.onStarted, ec);
}

void BluetoothStateMachine::cancelTimers() {
    for (const auto& timer : pendingTimers)
        timer->cancel();
    pendingTimers.clear();
    mScanTimer.reset();
}

void BluetoothStateMachine::onPeerFound(const CMacAddress& address, const std::wstring& name,
                                        std::uint32_t deviceClass) {
    doUpdatePeer(address, name, deviceClass, false);
}

void BluetoothStateMachine::onAuthenticationRequest(const CMacAddress& address,
                                                    const std::wstring& name,
                                                    std::uint32_t deviceClass) {
    pairRequest(boost::make_shared<BluetoothPeer>(address, name, deviceClass, false, clock()));
}

bool BluetoothStateMachine::checkBluetoothOn() {
    const bool on = mImpl->isBluetoothOn();
    if (on != mLastBluetoothOn) {
        mLastBluetoothOn = on;
        mPeersUpdated = true;
        doRescanCachedPeers();
    }
    return on;
}

BluetoothStateMachine::Peers BluetoothStateMachine::peers() const {
    Peers all;
    all.reserve(mPeers.size());
    for (const auto& [address, peer] : mPeers)
        all.push_back(peer);
    return all;
}

PeerPointer BluetoothStateMachine::getPeer(const BluetoothPeer& peer) const {
    const CMacAddress address = peer.address();
    const auto found = address.isEmpty() ? std::find_if(mPeers.begin(), mPeers.end(),
                                                        [name = peer.name()](const auto& at) {
                                                            return at.second->name() == name;
                                                        })
                                         : mPeers.find(address.getUllAddress());
    if (found == mPeers.end())
        return {};
    found->second->touch();
    return found->second;
}

void BluetoothStateMachine::doUpdatePeer(const CMacAddress& address, const std::wstring& name,
                                         std::uint32_t deviceClass, bool paired) {
    const auto seen =
        boost::make_shared<BluetoothPeer>(address, name, deviceClass, paired, clock());
    const auto [place, isNew] = mPeers.emplace(address.getUllAddress(), seen);
    if (isNew) {
        ORB_LOG(kLogDebug, "%s: New peer added: %s, %spaired", describe(*seen).c_str(),
                notUnless(paired));
    } else {
        BluetoothPeer& known = *place->second;
        known.touch();
        if (known == *seen)
            return;
        known.update(name, deviceClass, paired);
        ORB_LOG(kLogTrace, "%s: Existing peer updated: %s, %spaired", describe(known).c_str(),
                notUnless(paired));
    }
    mPeersUpdated = true;
}

void BluetoothStateMachine::doNotifyUpdatedPeersList(bool bluetoothOn) {
    ORB_LOG(kLogDebug, "%s() peers updated=%d btOn=%d, previous btOn=%d", mPeersUpdated,
            bluetoothOn, mLastBluetoothOn);
    if (!mPeersUpdated && bluetoothOn == mLastBluetoothOn)
        return;
    mPeersUpdated = false;
    mLastBluetoothOn = bluetoothOn;
    raise(mManager.onPeersUpdated, bluetoothOn, peers());
}

void BluetoothStateMachine::doRescanCachedPeers() {
    cancelScanTimer();
    // A paired peer stays only if the backend tells of it again.
    for (const auto& [address, peer] : mPeers)
        if (peer->isPaired())
            peer->markStale();
    // What the rescan finds was posted before its end, and so has touched the list by then.
    mImpl->rescanCachedPeers([this](error_code ec) {
        if (!mRunning)
            return;
        enqueue([this, ec](const auto&) {
            if (mRunning)
                onRescanned(ec);
        });
    });
}

void BluetoothStateMachine::onRescanned(error_code ec) {
    removeStalePeers();
    checkPairedByUser();
    doNotifyUpdatedPeersList(isRadioOn(ec));
    schedulePeerScan();
}

void BluetoothStateMachine::removeStalePeers() {
    mPeersUpdated |= std::erase_if(mPeers, [](const auto& at) {
                         const BluetoothPeer& peer = *at.second;
                         const bool stale = peer.isStale();
                         if (stale)
                             ORB_LOG(kLogDebug, "%s: Removing peer: %ls (%ls)", peer.name().c_str(),
                                     peer.address().getStdStringAddress().c_str());
                         return stale;
                     }) > 0;
}

void BluetoothStateMachine::checkPairedByUser() {
    if (!mRemotePeer)
        return;
    const PeerPointer found = getPeer(*mRemotePeer);
    if (!found || !found->isPaired())
        return;
    mRemotePeer = found;
    pairedByUser(found);
}

void BluetoothStateMachine::doSchedulePeerScan() {
    cancelScanTimer();
    mScanTimer = postDelayed([this](const auto&) { doRescanCachedPeers(); }, kScanPeriod);
}

void BluetoothStateMachine::cancelScanTimer() {
    if (mScanTimer)
        mScanTimer->cancel();
    mScanTimer.reset();
}

void BluetoothStateMachine::doDiscoverOnce() {
    const auto ended = [this](error_code ec) {
        enqueue([this, ec](const auto&) {
            ORB_LOG(kLogDebug, "%s: impl->discoverOnce() has funished, bluetooth is %s",
                    isRadioOn(ec) ? "ON" : "OFF");
            doNotifyUpdatedPeersList(isRadioOn(ec));
            discoverOnce();
        });
    };
    mImpl->discoverOnce(ended, kInquiryLength);
}

error_code BluetoothStateMachine::doEnableDiscoverable() {
    const error_code ec = mImpl->enableDiscoverable();
    if (ec)
        ORB_LOG(kLogError, "%s: unable to enable discoverability");
    return ec;
}

error_code BluetoothStateMachine::doDisableDiscoverable() {
    const error_code ec = mImpl->disableDiscoverable();
    if (ec)
        ORB_LOG(kLogError, "%s: unable to disable discoverability");
    return ec;
}

} // namespace orbelantine
