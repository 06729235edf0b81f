#pragma once

#include "bluetooth/DriverApi.h"
#include "bluetooth/IBluetoothImpl.h"
#include "core/common/run/Clock.h"

#include <memory>
#include <mutex>
#include <string>

namespace orbelantine {

namespace bluez {
class BlueZSession;
class RadioState;
} // namespace bluez

/// Bluetooth by BlueZ, over D-Bus. Any thread may call; signals and completions come on the worker
/// "BlueZIoThread", which lives from start to stop, and none once stop has returned. What is asked
/// while there is no worker isn't answered.
///
/// A machine without D-Bus or BlueZ is one without a radio: start succeeds, and operations complete
/// with generic::kNetworkDown. BlueZ may come and go meanwhile. Peers are let in only by
/// authRemote, and only by a backend that somebody listens to at its start; else the desktop's own
/// agent decides.
class BlueZBackend final : public IBluetoothImpl {
  public:
    /// To the system bus if `bus` is empty, else to the one of that address.
    explicit BlueZBackend(std::string bus = "", IClock& clock = IClock::system(),
                          DriverApi& driver = DriverApi::system());
    BlueZBackend(const BlueZBackend&) = delete;
    BlueZBackend& operator=(const BlueZBackend&) = delete;
    ~BlueZBackend() override;

    [[nodiscard]] error_code start(bool registerIncoming) override;
    void stop() override;
    [[nodiscard]] std::wstring getLocalName() override;
    [[nodiscard]] CMacAddress getLocalAddress() override;
    [[nodiscard]] error_code verifyHidDriverVersion() override;
    [[nodiscard]] error_code verifyHandsfreeDriverVersion() override;
    [[nodiscard]] std::int32_t getHidDriverVersion() override;
    [[nodiscard]] error_code enableDiscoverable() override;
    [[nodiscard]] error_code disableDiscoverable() override;
    [[nodiscard]] bool isDiscoverable() override;
    [[nodiscard]] bool isBluetoothOn() override;
    void rescanCachedPeers(Completion completion) override;
    void discoverOnce(Completion completion, std::uint16_t timeoutMultiplier) override;
    void pair(const CMacAddress& address, Completion completion) override;
    void authRemote(const CMacAddress& address, Completion completion) override;
    void unpair(const CMacAddress& address, Completion completion) override;

  private:
    struct Worker;

    [[nodiscard]] std::shared_ptr<Worker> worker() const;
    [[nodiscard]] error_code setDiscoverable(bool discoverable);
    template <class Task>
    void post(Task task);

    const std::string mBus;
    IClock& mClock;
    DriverApi& mDriver;
    const std::shared_ptr<bluez::RadioState> mRadio;
    mutable std::mutex mMutex;
    // Null while stopped.
    std::shared_ptr<Worker> mWorker;
};

} // namespace orbelantine
