#pragma once

#include "bluetooth/BluetoothPeer.h"
#include "bluetooth/radio/makeBluetooth.h"
#include "core/common/errors/ErrorCode.h"

#include <boost/signals2/signal.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace orbelantine {

class BluetoothStateMachine;

/// The computer's Bluetooth peers: finds and lists them, pairs them and lets them go.
///
/// Any thread may call. The signals fire on a worker of this object, where the operations that
/// return at once may be called. Those that wait for the worker (said below) throw an Exception
/// there, and all but stop() do before start() and after stop(). Destruction ends a manager that
/// wasn't stopped; it may come in a slot.
class BluetoothPeerManager {
  public:
    /// The start has succeeded, or failed with this code.
    boost::signals2::signal<void(boost::system::error_code)> onStarted;
    /// Whether Bluetooth is on, and all peers by ascending address: after each change of either.
    boost::signals2::signal<void(bool, std::vector<boost::shared_ptr<BluetoothPeer>>)>
        onPeersUpdated;
    /// The peer wants to be paired: answer with authPair or cancelPair within 20 seconds.
    boost::signals2::signal<void(boost::shared_ptr<BluetoothPeer>)> onPairRequest;
    /// The peer was paired by other means while its request was open.
    boost::signals2::signal<void(boost::shared_ptr<BluetoothPeer>)> onPairedByUser;
    /// A pairing has ended. One that ends before the peer has asked in its turn tells nothing.
    boost::signals2::signal<void(boost::shared_ptr<BluetoothPeer>, boost::system::error_code)>
        onPairFinished;
    boost::signals2::signal<void(boost::shared_ptr<BluetoothPeer>, boost::system::error_code)>
        onUnpairFinished;

    /// Over the platform's own backend.
    BluetoothPeerManager();
    explicit BluetoothPeerManager(BluetoothMaker makeImpl, IClock& clock = IClock::system());
    virtual ~BluetoothPeerManager();
    BluetoothPeerManager(const BluetoothPeerManager&) = delete;
    BluetoothPeerManager& operator=(const BluetoothPeerManager&) = delete;

    /// Waits. Begins with an empty list, in place of an earlier start if there is one; what becomes
    /// of it is told by onStarted. `registerIncoming` also takes the requests of peers that want to
    /// be paired. Throws std::system_error if there can be no thread.
    virtual void start(bool registerIncoming);
    /// Waits. Also drops every slot of all signals: connect them again before the next start.
    virtual void stop();
    /// Reads the known peers anew, and tells of them even if nothing has changed.
    virtual void refreshPeers();
    /// Waits.
    [[nodiscard]] virtual bool isBluetoothOn();
    /// Waits. The local radio's, as last read; empty before.
    [[nodiscard]] virtual std::wstring getLocalName();
    /// Waits. The local radio's, as last read.
    [[nodiscard]] virtual CMacAddress getLocalAddress();
    /// Waits. -1 when it can't be read.
    [[nodiscard]] virtual std::int32_t getHidDriverVersion();
    /// Waits. Success if the driver is of the version that this library expects.
    [[nodiscard]] virtual error_code verifyHidDriverVersion();
    /// Waits. Success if the driver is of the version that this library expects.
    [[nodiscard]] virtual error_code verifyHandsfreeDriverVersion();
    /// Waits. Lets phones find this computer; 40 in the generic category during a discovery or a
    /// pairing.
    [[nodiscard]] virtual error_code enableDiscoverable();
    /// Waits. 40 in the generic category during a discovery or a pairing.
    [[nodiscard]] virtual error_code disableDiscoverable();
    /// Whether the known peers are read every 5 seconds, as they are from the start. Nothing during
    /// a discovery or a pairing.
    virtual void enablePeerScans(bool enable);
    /// Looks for peers in the neighbourhood until stopDiscovery or the next pairing.
    virtual void startDiscovery();
    virtual void stopDiscovery();
    /// Asks a peer of the list to be paired: the one of the same address or, without an address, of
    /// the same name.
    virtual void pairPeer(const boost::shared_ptr<BluetoothPeer>& peer);
    /// Agrees to the request of onPairRequest, whoever is named here.
    virtual void authPair(const boost::shared_ptr<BluetoothPeer>& peer);
    /// Refuses the request of onPairRequest, or gives up the pairing that was begun here.
    virtual void cancelPair();
    /// Lets a paired peer of the list go.
    virtual void unpair(const boost::shared_ptr<BluetoothPeer>& peer);
    /// Waits. The list's own peers by ascending address: what is changed in one is changed there.
    [[nodiscard]] virtual std::vector<boost::shared_ptr<BluetoothPeer>> getPeers();

  private:
    using Machine = boost::shared_ptr<BluetoothStateMachine>;

    [[nodiscard]] Machine current() const;
    /// Throws if there is none.
    [[nodiscard]] Machine machine() const;
    /// Throws on the worker.
    void refuseOnWorker() const;
    /// Runs `task` with the machine on its worker.
    template <class Task>
    auto ask(Task task) const;
    /// The machine that was there before.
    Machine exchange(Machine next);

    const BluetoothMaker mMakeImpl;
    IClock& mClock;
    // Held through a start and a stop, which wait for each other.
    std::mutex mLife;
    // Guards what follows.
    mutable std::mutex mMutex;
    Machine mMachine;
};

} // namespace orbelantine
