#pragma once

#include "bluetooth/IBluetoothService.h"
#include "core/common/run/Clock.h"
#include "core/common/run/IoThread.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <atomic>
#include <cstdint>
#include <string>

namespace orbelantine {

class BluetoothHIDClientManager;
class IInputContext;
class KVStore;

/// Connects the computer's input to a phone: turns the manager's asynchronous steps into one
/// sequence, and can make the phone read the HID record anew.
///
/// Any thread may call. A worker of its own takes one operation at a time, blocks while the manager
/// works, and calls the completions and signals, but for those of forceDisconnect. Disconnect
/// before destruction, which drops what is still posted; not from the worker.
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
    /// worker. A device client that is in the middle of a call lets it end first.
    void forceDisconnect(Completion completion) override;

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
    void teardown();

    IClock& mClock;
    IoThread mWorker;
    std::atomic<bool> mHidRemoteSdpRefresh = false;
    boost::shared_ptr<BluetoothHIDClientManager> mManager;
    boost::shared_ptr<KVStore> mStore;
};

} // namespace orbelantine
