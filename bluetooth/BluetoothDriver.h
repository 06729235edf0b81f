#pragma once

#include "bluetooth/DriverApi.h"
#include "core/common/errors/ErrorCode.h"

#include <boost/function/function1.hpp>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace orbelantine {

class IoThread;

/// One opened device interface of the private driver, watched for its removal. Any thread may
/// call; the removal callback runs on this object's own thread, "BluetoothDriverMonitoringThread",
/// and may call close() but must not destroy the object.
class BluetoothDriver {
  public:
    using RemovalCallback = boost::function<void(error_code)>;

    /// With `exclusivePath`, refuses a device path that another such instance holds.
    explicit BluetoothDriver(bool exclusivePath, DriverApi& api = DriverApi::system());
    virtual ~BluetoothDriver();
    BluetoothDriver(const BluetoothDriver&) = delete;
    BluetoothDriver& operator=(const BluetoothDriver&) = delete;

    /// Opens the first device of the class that bears the driver's mark; `flags` as of CreateFileW.
    [[nodiscard]] error_code open(const Guid& interfaceGuid, std::uint32_t flags,
                                  RemovalCallback removalCallback = {});
    void close();
    /// Asks for the driver's version with a request of two bytes of output.
    [[nodiscard]] error_code getVersion(std::uint32_t requestCode, std::int16_t& out);

  protected:
    [[nodiscard]] DriverApi& api() const { return mApi; }

    [[nodiscard]] DriverApi::Handle handle() const { return mHandle; }

    [[nodiscard]] bool isOpen() const { return mHandle != DriverApi::kInvalidHandle; }

  private:
    static constexpr DriverApi::Handle kNoNotification = 0;

    [[nodiscard]] error_code explainMissingDevice(const Guid& guid, error_code firstFailure);
    [[nodiscard]] error_code getUnboundDevicePath(const Guid& guid, std::wstring& path,
                                                  bool presentOnly);
    [[nodiscard]] error_code openExclusively(const std::wstring& path, std::uint32_t flags);
    [[nodiscard]] error_code openLocked(const std::wstring& path, std::uint32_t flags);
    [[nodiscard]] bool startDeviceRemovalMonitoring();
    void stopDeviceRemovalMonitoring();
    static DriverApi::Error onNotification(void* context, std::uint32_t action);
    void onDriverRemoval();
    [[nodiscard]] std::wstring devicePath() const;

    DriverApi& mApi;
    // mMutex guards mDevicePath, mNotification and mRemovalCallback.
    mutable std::mutex mMutex;
    std::wstring mDevicePath;
    std::atomic<DriverApi::Handle> mHandle = DriverApi::kInvalidHandle;
    DriverApi::Handle mNotification = kNoNotification;
    RemovalCallback mRemovalCallback;
    std::unique_ptr<IoThread> mMonitoringThread;
    const bool mExclusivePath;
};

} // namespace orbelantine
