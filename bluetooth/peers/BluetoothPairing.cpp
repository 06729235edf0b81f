#include "bluetooth/IBluetoothImpl.h"
#include "bluetooth/peers/BluetoothPeerManager.h"
#include "bluetooth/peers/BluetoothStateMachine.h"
#include "core/common/errors/GenericError.h"
#include "core/common/log/Log.h"

namespace orbelantine {

namespace {

error_code noSuchPeer() {
    return genericError(generic::kDestinationAddressRequired);
}

} // namespace

PeerPointer BluetoothStateMachine::find(const PeerPointer& wanted, const char* function,
                                        const char* notKnown, const char* notListed) const {
    PeerPointer found = wanted ? getPeer(*wanted) : PeerPointer();
    if (!found)
        ORB_LOG_TEXT(kLogError, "%s: %s", function, wanted ? notListed : notKnown);
    return found;
}

PeerPointer BluetoothStateMachine::findLocal(const char* function, const char* notListed) const {
    return find(mLocalPeer.load(), function, "no peer information", notListed);
}

PeerPointer BluetoothStateMachine::findRemote(const char* function) const {
    return find(mRemotePeer, function, "no remote peer information", "unable to find remote peer");
}

void BluetoothStateMachine::doSetPairingRequestDevice(const PeerPointer& peer) {
    mRemotePeer = peer;
    if (getPeer(*peer))
        return;
    ORB_LOG(kLogDebug, "%s: remote peer not in the list - adding");
    doUpdatePeer(peer->address(), peer->name(), peer->deviceClass(), false);
    doNotifyUpdatedPeersList(true);
}

error_code BluetoothStateMachine::doPair() {
    const PeerPointer peer = findLocal(ORB_FUNCTION_NAME, "unable to find discovered peer to pair");
    if (!peer)
        return noSuchPeer();
    if (peer->isPaired()) {
        ORB_LOG(kLogError, "%s: peer is already paired");
        return genericError(generic::kAlreadyConnected);
    }
    mLocalPeer.store(peer);
    // What comes of it is told by the peer's request, or by the time.
    mImpl->pair(peer->address(), [](error_code ec) {
        if (ec)
            ORB_LOG(kLogError, "%s: unable to pair the device");
        else
            ORB_LOG(kLogDebug, "%s: impl->pair() has finished successfully");
    });
    return {};
}

error_code BluetoothStateMachine::doPairRequest() {
    const PeerPointer peer = findRemote(ORB_FUNCTION_NAME);
    if (!peer)
        return noSuchPeer();
    mRemotePeer = peer;
    if (const PeerPointer local = mLocalPeer.load(); local && *local == *peer) {
        ORB_LOG(kLogDebug, "%s: local and remote peers match: auto-approving");
        const error_code ec = doAuthPair();
        if (ec)
            ORB_LOG(kLogError, "%s: peer authorization error");
        return ec;
    }
    raise(mManager.onPairRequest, peer);
    return {};
}

error_code BluetoothStateMachine::doAuthPair() {
    const PeerPointer peer = findRemote(ORB_FUNCTION_NAME);
    if (!peer)
        return noSuchPeer();
    mImpl->authRemote(peer->address(), [this, peer](error_code ec) {
        if (ec)
            ORB_LOG(kLogError, "%s: unable to pair the device");
        else
            ORB_LOG(kLogDebug, "%s: impl->authRemote() has finished successfully");
        pairFinished(peer, ec);
    });
    return {};
}

error_code BluetoothStateMachine::doPairFinished(error_code ec) {
    const PeerPointer peer = findRemote(ORB_FUNCTION_NAME);
    if (!peer)
        return noSuchPeer();
    raise(mManager.onPairFinished, peer, ec);
    forgetPairing();
    return {};
}

void BluetoothStateMachine::doPairedByUser(const PeerPointer& peer) {
    raise(mManager.onPairedByUser, peer);
    forgetPairing();
}

void BluetoothStateMachine::forgetPairing() {
    mLocalPeer.store(PeerPointer());
    mRemotePeer.reset();
}

error_code BluetoothStateMachine::doUnpair() {
    const PeerPointer peer = findLocal(ORB_FUNCTION_NAME, "unable to find peer to unpair");
    if (!peer)
        return noSuchPeer();
    if (!peer->isPaired()) {
        ORB_LOG(kLogError, "%s: peer is not paired");
        return genericError(generic::kNotConnected);
    }
    mLocalPeer.store(peer);
    mImpl->unpair(peer->address(), [this](error_code ec) {
        if (ec)
            ORB_LOG(kLogError, "%s: unable to unpair the device");
        else
            ORB_LOG(kLogDebug, "%s: impl->unpair() has finished successfully");
        unpairFinished(mLocalPeer.load(), ec);
    });
    return {};
}

error_code BluetoothStateMachine::doUnpairFinished(error_code ec) {
    const PeerPointer peer = mLocalPeer.load();
    if (!peer) {
        ORB_LOG(kLogError, "%s: no remote peer information");
        return noSuchPeer();
    }
    raise(mManager.onUnpairFinished, peer, ec);
    forgetPairing();
    return {};
}

} // namespace orbelantine
