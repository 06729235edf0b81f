#pragma once

#include "bluetooth/DriverApi.h"
#include "bluetooth/IBluetoothImpl.h"
#include "bluetooth/radio/AuthenticationListener.h"
#include "bluetooth/radio/BluetoothApi.h"
#include "core/common/run/Clock.h"
#include "core/common/run/IoThread.h"

#include <memory>
#include <mutex>
#include <optional>

namespace orbelantine {

/// The Windows Bluetooth API as a backend. Any thread may call, one at a time what starts and ends
/// it. What takes long runs on "BluetoothWindowsIoThread": there onPeerFound fires and operations
/// complete. Peers' requests come on a thread of the platform and fire onAuthenticationRequest
/// there. Failures of the platform's calls are codes of the generic category by the platform's
/// numbers. What stop() finds waiting, or is asked of a backend that isn't started, isn't answered.
class BluetoothWindows final : public IBluetoothImpl {
  public:
    explicit BluetoothWindows(BluetoothApi& api, DriverApi& driver = DriverApi::system(),
                              IClock& clock = IClock::system());
    /// As stop.
    ~BluetoothWindows() override;
    BluetoothWindows(const BluetoothWindows&) = delete;
    BluetoothWindows& operator=(const BluetoothWindows&) = delete;

    [[nodiscard]] error_code start(bool incoming) override;
    /// Also disconnects the slots of onAuthenticationRequest. Waits for the operation in progress.
    void stop() override;
    [[nodiscard]] std::wstring getLocalName() override;
    [[nodiscard]] CMacAddress getLocalAddress() override;
    [[nodiscard]] error_code verifyHidDriverVersion() override;
    [[nodiscard]] error_code verifyHandsfreeDriverVersion() override;
    [[nodiscard]] std::int32_t getHidDriverVersion() override;
    [[nodiscard]] error_code enableDiscoverable() override;
    [[nodiscard]] error_code disableDiscoverable() override;
    [[nodiscard]] bool isDiscoverable() override;
    /// Reads the local radio.
    [[nodiscard]] bool isBluetoothOn() override;
    void rescanCachedPeers(Completion completion) override;
    void discoverOnce(Completion completion, std::uint16_t timeoutMultiplier) override;
    /// Blocks the worker as long as the platform's dialog is open.
    void pair(const CMacAddress& address, Completion completion) override;
    void authRemote(const CMacAddress& address, Completion completion) override;
    void unpair(const CMacAddress& address, Completion completion) override;

    /// Hears no more of peers' requests.
    [[nodiscard]] error_code unregisterIncoming();
    /// Opens the platform's notification of pairing.
    error_code showPairingUi();

  private:
    using Error = BluetoothApi::Error;
    using Worker = boost::weak_ptr<IoThread::Queue>;
    enum class Search { Known, Unknown };

    [[nodiscard]] error_code registerIncoming();
    [[nodiscard]] error_code startWorker(bool incoming);
    void end();
    [[nodiscard]] error_code getLocalRadioInfo();
    [[nodiscard]] error_code windowsFindPeers(Search search, std::uint8_t timeoutMultiplier);
    [[nodiscard]] error_code setDiscoverable(bool enabled, const char* function);
    void onBluetoothAuth(const BluetoothApi::AuthenticationParams& params);
    [[nodiscard]] error_code lastError() const;
    [[nodiscard]] Worker worker() const;
    template <class Operation>
    void post(Completion completion, Operation operation);
    template <class Operation>
    void dispatch(Completion completion, Operation operation);

    BluetoothApi& mApi;
    DriverApi& mDriver;
    IClock& mClock;
    // Guards what several threads read: the last reading of the radio, the last request, and what
    // start() sets.
    mutable std::mutex mMutex;
    BluetoothApi::RadioInfo mRadioInfo;
    BluetoothApi::AuthenticationParams mLastAuth;
    bool mRegisterIncoming = false;
    IClock::TimePoint mPairingUiFrom;
    Worker mWorker;
    // Of the threads that start and end it.
    BluetoothApi::Handle mAuthHandle = BluetoothApi::kNull;
    std::optional<AuthenticationListener> mListener;
    std::unique_ptr<IoThread> mIoThread;
    // Expires with this object, which a slot on the worker may destroy.
    boost::shared_ptr<void> mLife;
};

} // namespace orbelantine
