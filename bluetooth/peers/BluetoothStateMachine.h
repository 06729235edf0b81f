#pragma once

#include "bluetooth/peers/BluetoothState.h"
#include "bluetooth/radio/makeBluetooth.h"
#include "core/common/run/Completion.h"
#include "core/common/run/FireSafely.h"
#include "core/common/run/StateMachine.h"

#include <boost/smart_ptr/atomic_shared_ptr.hpp>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine {

class BluetoothPeerManager;
class IBluetoothImpl;

/// Keeps the list of Bluetooth peers alive, and runs discovery, pairing and unpairing one at a
/// time. Its results are the signals of a BluetoothPeerManager, raised on the worker.
///
/// Any thread may raise the events; all but the two that have a result return at once. The worker
/// alone touches the fields, unless said otherwise, and calls the backend. The destructor isn't run
/// on the worker.
class BluetoothStateMachine final
    : public StateMachine<BluetoothStateMachine, BluetoothState, std::chrono::seconds> {
  public:
    using Peers = std::vector<PeerPointer>;

    /// `manager` outlives retire(). Throws std::system_error if there can be no thread.
    BluetoothStateMachine(BluetoothPeerManager& manager, const BluetoothMaker& makeImpl,
                          IClock& clock = IClock::system());
    /// Retires it; what the backend is at goes with it.
    ~BluetoothStateMachine() override;

    void refreshPeers() override;
    [[nodiscard]] error_code enableDiscoverable() override;
    [[nodiscard]] error_code disableDiscoverable() override;
    void startDiscovery() override;
    void stopDiscovery() override;
    void discoverOnce() override;
    void schedulePeerScan() override;
    void enablePeerScans(bool enable) override;
    void pair(const PeerPointer& peer) override;
    void pairRequest(const PeerPointer& peer) override;
    void pairedByUser(const PeerPointer& peer) override;
    void authPair(const PeerPointer& peer) override;
    void pairFinished(const PeerPointer& peer, error_code ec) override;
    void cancelPair() override;
    void unpair(const PeerPointer& peer) override;
    void unpairFinished(const PeerPointer& peer, error_code ec) override;

    [[nodiscard]] std::string getName() const override { return "BluetoothStateMachine"; }

    /// Any thread but the worker: starts the backend, and comes back once that has been tried.
    void enterStart(bool registerIncoming);
    /// Any thread but the worker: ends what is going on and the backend, and comes back then.
    void enterFini();
    /// Any thread: raises no signal any more and takes no event; off the worker, waits for the one
    /// in progress.
    void retire();

    [[nodiscard]] bool isOnWorker() const { return onWorker(); }

    /// Whether the calling thread is a worker for `manager`.
    [[nodiscard]] static bool isServing(const BluetoothPeerManager& manager);

    /// What follows belongs to the worker.
    /// @{

    [[nodiscard]] IBluetoothImpl& impl() const { return *mImpl; }

    /// Whether the radio is on; a change has the list read anew.
    [[nodiscard]] bool checkBluetoothOn();
    /// By ascending address.
    [[nodiscard]] Peers peers() const;

    [[nodiscard]] error_code lastError() const { return mLastError; }

    void setLastError(error_code ec) { mLastError = ec; }

    void setLocalPeer(const PeerPointer& peer) { mLocalPeer.store(peer); }

    [[nodiscard]] bool peerScansEnabled() const { return mPeerScansEnabled; }

    void setPeerScansEnabled(bool enabled) { mPeerScansEnabled = enabled; }

    void setPeersUpdated() { mPeersUpdated = true; }

    [[nodiscard]] error_code doInit();
    void doFini(error_code ec);
    [[nodiscard]] error_code doEnableDiscoverable();
    [[nodiscard]] error_code doDisableDiscoverable();
    /// Reads the backend's known peers, then drops those that have gone and says what has changed.
    void doRescanCachedPeers();
    /// The next rescan, a period from now.
    void doSchedulePeerScan();
    void cancelScanTimer();
    void doDiscoverOnce();
    void doSetPairingRequestDevice(const PeerPointer& peer);
    [[nodiscard]] error_code doPair();
    [[nodiscard]] error_code doPairRequest();
    [[nodiscard]] error_code doAuthPair();
    error_code doPairFinished(error_code ec);
    void doPairedByUser(const PeerPointer& peer);
    [[nodiscard]] error_code doUnpair();
    error_code doUnpairFinished(error_code ec);

    /// @}

  private:
    /// What BluetoothPeer is made of.
    using Sighting = void (BluetoothStateMachine::*)(const CMacAddress&, const std::wstring&,
                                                     std::uint32_t);

    [[nodiscard]] error_code askState(error_code (BluetoothState::*event)());
    void cancelTimers();
    /// A slot that calls `sighting` on the worker while the machine runs.
    [[nodiscard]] auto slot(Sighting sighting);

    /// Fires a signal of the manager, unless retired.
    template <class Signal, class... Arguments>
    void raise(const Signal& signal, Arguments&&... arguments) {
        if (!mRetired)
            fireSafely(signal, std::forward<Arguments>(arguments)...);
    }

    void onPeerFound(const CMacAddress& address, const std::wstring& name,
                     std::uint32_t deviceClass);
    void onAuthenticationRequest(const CMacAddress& address, const std::wstring& name,
                                 std::uint32_t deviceClass);
    void onRescanned(error_code ec);
    /// The list's peer for `peer`, touched; by name where there is no address. Null if none.
    [[nodiscard]] PeerPointer getPeer(const BluetoothPeer& peer) const;
    void doUpdatePeer(const CMacAddress& address, const std::wstring& name,
                      std::uint32_t deviceClass, bool paired);
    void removeStalePeers();
    void checkPairedByUser();
    void forgetPairing();
    void doNotifyUpdatedPeersList(bool bluetoothOn);
    /// The list's peer for `wanted`. Null if there is none, which the log tells under the caller's
    /// name.
    [[nodiscard]] PeerPointer findLocal(const char* function, const char* notListed) const;
    [[nodiscard]] PeerPointer findRemote(const char* function) const;
    [[nodiscard]] PeerPointer find(const PeerPointer& wanted, const char* function,
                                   const char* notKnown, const char* notListed) const;

    BluetoothPeerManager& mManager;
    const std::unique_ptr<IBluetoothImpl> mImpl;
    bool mPeerScansEnabled = true;
    /// The pending rescan; null when there is none.
    boost::shared_ptr<IDelayTimer> mScanTimer;
    /// By address.
    std::map<std::uint64_t, PeerPointer> mPeers;
    /// Since the last notification.
    bool mPeersUpdated = false;
    bool mLastBluetoothOn = false;
    bool mRegisterIncoming = false;
    /// Any thread: from doInit to doFini.
    std::atomic<bool> mRunning = false;
    /// Of the pairing or unpairing that was begun here. Any thread.
    boost::atomic_shared_ptr<BluetoothPeer> mLocalPeer;
    /// Of the pairing that the peer asked for.
    PeerPointer mRemotePeer;
    /// What a state hands to the next one.
    error_code mLastError;
    /// Any thread.
    std::atomic<bool> mRetired = false;
};

} // namespace orbelantine
