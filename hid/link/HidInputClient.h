#pragma once

#include "bluetooth/IBluetoothService.h"
#include "core/common/run/Clock.h"
#include "core/common/run/IoThread.h"

#include <boost/smart_ptr/atomic_shared_ptr.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <atomic>
#include <cstdint>
#include <string>

namespace orbelantine {

class BluetoothHIDClientManager;
class IBluetoothHIDClient;
class IInputContext;
class KVStore;

/// Connects the computer's input to a phone: turns the manager's asynchronous steps into one
/// sequence, and can make the phone read the HID record anew.
///
/// Any thread may call. A worker of its own takes one operation at a time, blocks while the manager
/// works, and calls the completions and signals, but for those of forceDisconnect. Every completion
/// comes once: what destruction takes back, and all that is asked after an exception has ended a
/// worker, completes with HidErrors::InvalidState.
///
/// Disconnect before destruction, which breaks what hangs in the driver and waits for the workers.
/// It may come on any thread: on the worker, in a completion or signal, that is its last task; on
/// another worker of the library, the link's end goes on after it.
class HidInputClient : public IBluetoothService {
  public:
    /// A record refresh ended.
    boost::signals2::signal<void(boost::system::error_code)> onHidSdpRefresh;
    /// The link came up.
    boost::signals2::signal<void()> onConnected;

    explicit HidInputClient(const KVStore& settings, IClock& clock = IClock::system());
    ~HidInputClient() override;
    HidInputClient(const HidInputClient&) = delete;
    HidInputClient& operator=(const HidInputClient&) = delete;

    /// HidErrors::AlreadyStarted while connected. With a record refresh due, always succeeds, 3
    /// seconds after the link was tried.
    void connect(const BluetoothPeer& peer, Completion completion) override;
    void disconnect(Completion completion) override;
    /// On the calling thread, with success: breaks the link without waiting for this object's
    /// worker. What waits for the driver there fails.
    void forceDisconnect(Completion completion) override;

    /// Completes once what was raised on the surface before has been sent, or given up. What is
    /// raised before a disconnect goes out if the disconnect follows this.
    void flush(Completion completion);

    /// The link sleeps after that time without input; 0 keeps it up.
    void setIdleTimeout(std::uint64_t milliseconds);
    /// Puts the link to sleep until the next input or resumeConnection.
    void pauseConnection();
    void resumeConnection();
    /// Makes the next connect a record refresh as well.
    void setHidRemoteSdpRefresh(bool refresh);
    /// The surface that the next connect's input comes from.
    void setInputContext(const boost::shared_ptr<IInputContext>& context);

  private:
    void connectManager();
    void onManagerDisconnected(error_code ec);
    void onManagerConnected();
    [[nodiscard]] error_code connectTo(const std::string& address);
    [[nodiscard]] error_code startHID(const std::string& address);
    [[nodiscard]] error_code stopHID();
    [[nodiscard]] error_code refreshHidSdpRecords(const std::string& address);
    void breakLink();
    void teardown();

    IClock& mClock;
    IoThread mWorker;
    std::atomic<bool> mHidRemoteSdpRefresh = false;
    // How often the link was broken by force.
    std::atomic<unsigned> mForced = 0;
    boost::shared_ptr<BluetoothHIDClientManager> mManager;
    // That of a record refresh in progress; read by any thread.
    boost::atomic_shared_ptr<IBluetoothHIDClient> mRefreshClient;
    boost::shared_ptr<KVStore> mStore;
    // Gone with this object, which a slot may end.
    boost::shared_ptr<void> mLife;
};

} // namespace orbelantine
