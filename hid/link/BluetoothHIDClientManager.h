#pragma once

#include "core/common/errors/ErrorCode.h"
#include "core/common/run/Clock.h"
#include "core/common/run/Completion.h"
#include "core/common/run/IoThread.h"
#include "hid/link/HIDServiceRecord.h"
#include "hid/link/IdleTimer.h"

#include <boost/signals2/signal.hpp>
#include <boost/smart_ptr/atomic_shared_ptr.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

namespace orbelantine {

class IBluetoothHIDClient;
class IBluetoothSDPController;
class IInputContext;
class IInputSource;
class IMediaBuffer;
class IMediaElement;
class InputGate;
class KVStore;

/// The life of the whole HID connection to a phone: the service record, the chain from the input
/// source to the HID client, and the link, which sleeps when no input comes and wakes with the next
/// one.
///
/// Any thread may call. All work is done, and both signals and all completions are called, on a
/// worker of its own, which owns every field but those named below. Input threads wait for it at
/// each event. Every completion comes once: what destruction takes back, and all that is asked of a
/// worker that an exception has ended, completes with HidErrors::InvalidState. Destruction breaks
/// what hangs in the driver; not from the worker.
class BluetoothHIDClientManager final {
  public:
    /// How long an input thread waits for one event.
    static constexpr std::chrono::seconds kInputWait{5};

    /// The link came up.
    boost::signals2::signal<void()> onConnected;
    /// The link failed or went away.
    boost::signals2::signal<void(boost::system::error_code)> onDisconnected;

    explicit BluetoothHIDClientManager(const KVStore& settings, IClock& clock = IClock::system(),
                                       std::chrono::milliseconds inputWait = kInputWait);
    ~BluetoothHIDClientManager();
    BluetoothHIDClientManager(const BluetoothHIDClientManager&) = delete;
    BluetoothHIDClientManager& operator=(const BluetoothHIDClientManager&) = delete;

    /// Publishes the service record. HidErrors::AlreadyStarted, SdpFailure or
    /// SdpHidRegistrationFailure.
    virtual void init(Completion completion);
    /// Takes down whatever stands, and refuses input from the call on. Always succeeds.
    virtual void cleanup(Completion completion);
    /// Builds the chain to the peer at `address` ("00:11:22:33:44:55") and opens the link.
    /// HidErrors::InvalidState before init or after start; a link that fails leaves the chain
    /// built, and the next input tries again.
    virtual void start(std::string address, Completion completion);
    /// Takes down the chain and its link. HidErrors::InvalidState if there is none.
    virtual void stop(Completion completion);

    /// The link sleeps after that time without input; 0 keeps it up.
    void setIdleTimeout(std::uint64_t milliseconds);
    /// Puts the link to sleep until the next input or resumeConnection.
    void pauseConnection();
    void resumeConnection(Completion completion);
    /// Completes, with success, once the input that was raised before has been sent or given up.
    void flush(Completion completion);
    /// Breaks the link on the calling thread, without waiting for the worker; what waits for the
    /// driver there fails.
    void forceDisconnect();
    /// The surface that the next start's input comes from.
    void setInputContext(const boost::shared_ptr<IInputContext>& context);

  private:
    enum State : std::int32_t {
        kUninitialised = 0,
        /// The record is published.
        kInitialised = 1,
        /// The chain is built; its link is up or asleep.
        kStarted = 2,
    };

    using Buffer = boost::shared_ptr<IMediaBuffer>;
    using Element = boost::shared_ptr<IMediaElement>;

    // The worker's halves share the names of the operations, which their log lines carry.
    [[nodiscard]] error_code init();
    void cleanup();
    [[nodiscard]] error_code start(const std::string& address);
    [[nodiscard]] error_code stop();
    [[nodiscard]] error_code resumeConnection();

    void createClient(const KVStore& store);
    void buildChain(KVStore& store);
    void cleanupConnection();
    void clientDisconnected(error_code ec);
    [[nodiscard]] error_code brokenOff();
    [[nodiscard]] error_code reconnectIfNecessary();
    void flush(OnceCompletion done);
    void suspendConnection();
    void applyIdleTimeout(std::uint64_t milliseconds);
    void restartIdleTimer();

    /// On the input thread. Only an open gate vouches for `manager`: a source may outlive it.
    static void handleInputProxy(BluetoothHIDClientManager* manager, InputGate& gate,
                                 const Buffer& buffer, const Element& target);
    void handleInputProxy(const InputGate& gate, const Buffer& buffer, const Element& target);

    const HIDServiceRecord mRecord;
    boost::shared_ptr<IBluetoothSDPController> mSdpController;
    // Read by any thread, as is the context, which any thread also sets.
    boost::atomic_shared_ptr<IBluetoothHIDClient> mHidClient;
    boost::shared_ptr<IInputSource> mInputSource;
    boost::atomic_shared_ptr<IInputContext> mInputContext;
    State mState = kUninitialised;
    const boost::shared_ptr<KVStore> mStore;
    std::string mAddress;
    const std::chrono::milliseconds mInputWait;
    // Of the present chain.
    boost::shared_ptr<InputGate> mInputGate;
    IoThread mWorker;
    std::chrono::milliseconds mIdleTimeout{0};
    IdleTimer mIdleTimer;
    bool mIdleEnabled = false;
    // Set by any thread.
    std::atomic<bool> mStopping = false;
    // How often the link was broken by force.
    std::atomic<unsigned> mForced = 0;
};

} // namespace orbelantine
