#pragma once

#include "bluetooth/DriverApi.h"
#include "core/common/errors/ErrorCode.h"
#include "core/common/run/CallGate.h"

#include <boost/function/function1.hpp>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace orbelantine {

class DeviceBreaker;
class IoThread;

/// One opened device interface of the private driver, watched for its removal. Any thread may
/// call; the removal callback runs on this object's own thread, "BluetoothDriverMonitoringThread",
/// and may call close() but must not destroy the object.
class BluetoothDriver {
  public:
    using RemovalCallback = boost::function<void(error_code)>;

    /// With `exclusivePath`, refuses a device path that another such instance holds. `breaker`, if
    /// any, may close this device until its end. Throws std::system_error if there can be no
    /// thread.
    explicit BluetoothDriver(bool exclusivePath, DriverApi& api = DriverApi::system(),
                             DeviceBreaker* breaker = nullptr);
    virtual ~BluetoothDriver();
    BluetoothDriver(const BluetoothDriver&) = delete;
    BluetoothDriver& operator=(const BluetoothDriver&) = delete;

    /// Opens the first device of the class that bears the driver's mark; `flags` as of CreateFileW.
    [[nodiscard]] error_code open(const Guid& interfaceGuid, std::uint32_t flags,
                                  RemovalCallback removalCallback = {});
    /// Requests in progress fail at once, and the handle is free when this returns.
    void close();
    /// Asks for the driver's version with a request of two bytes of output.
    [[nodiscard]] error_code getVersion(std::uint32_t requestCode, std::int16_t& out);

  protected:
    /// The use of the handle for the time of a call, through which it stays open; false if there
    /// is none.
    class Use {
      public:
        explicit Use(BluetoothDriver& driver)
            : mCall(driver.mUses)
            , mHandle(driver.mHandle) {}

        explicit operator bool() const { return mCall.inside(); }

        [[nodiscard]] DriverApi::Handle handle() const { return mHandle; }

      private:
        CallGate::Call mCall;
        DriverApi::Handle mHandle;
    };

    [[nodiscard]] DriverApi& api() const { return mApi; }

  private:
    static constexpr DriverApi::Handle kNoNotification = 0;

    [[nodiscard]] error_code explainMissingDevice(const Guid& guid, error_code firstFailure);
    [[nodiscard]] error_code getUnboundDevicePath(const Guid& guid, std::wstring& path,
                                                  bool presentOnly);
    [[nodiscard]] error_code openExclusively(const std::wstring& path, std::uint32_t flags);
    [[nodiscard]] error_code openLocked(const std::wstring& path, std::uint32_t flags);
    [[nodiscard]] bool startDeviceRemovalMonitoring();
    void closeHandle();
    static DriverApi::Error onNotification(void* context, std::uint32_t action);
    void onDriverRemoval(std::uint64_t opening);
    [[nodiscard]] std::wstring devicePath() const;

    DriverApi& mApi;
    DeviceBreaker* const mBreaker;
    const bool mExclusivePath;
    // Held through an opening and a closing, which wait for each other. Guards what follows.
    std::mutex mLife;
    DriverApi::Handle mNotification = kNoNotification;
    // Open while the handle is.
    CallGate mUses{CallGate::Start::Shut};
    std::atomic<DriverApi::Handle> mHandle = DriverApi::kInvalidHandle;
    // Guards what the removal thread reads.
    mutable std::mutex mMutex;
    std::wstring mDevicePath;
    RemovalCallback mRemovalCallback;
    // Counts the openings, so that the removal of an earlier one isn't taken for the present one's.
    std::atomic<std::uint64_t> mOpening = 0;
    std::unique_ptr<IoThread> mMonitoringThread;
};

} // namespace orbelantine
