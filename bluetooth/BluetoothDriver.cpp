#include "bluetooth/BluetoothDriver.h"

#include "bluetooth/DeviceBreaker.h"
#include "bluetooth/DevicePath.h"
#include "bluetooth/DriverHandles.h"
#include "core/common/errors/ApiCategory.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/errors/GenericError.h"
#include "core/common/log/Log.h"
#include "core/common/run/IoThread.h"

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace orbelantine {

namespace {

// A request may begin only after it should have been cancelled.
constexpr std::chrono::milliseconds kCancelAgain(10);

struct ExclusivePaths {
    std::mutex mutex;
    std::vector<std::wstring> paths;
};

ExclusivePaths& exclusivePaths() {
    static ExclusivePaths instance;
    return instance;
}

void releaseExclusivePath(const std::wstring& path) {
    ExclusivePaths& held = exclusivePaths();
    const std::lock_guard lock(held.mutex);
    std::erase(held.paths, path);
}

error_code driverError(DriverApi::Error error, const char* call) {
    return {static_cast<int>(error), apiCategory(call)};
}

} // namespace

BluetoothDriver::BluetoothDriver(bool exclusivePath, DriverApi& api, DeviceBreaker* breaker)
    : mApi(api)
    , mBreaker(breaker)
    , mExclusivePath(exclusivePath)
    , mMonitoringThread(std::make_unique<IoThread>("BluetoothDriverMonitoringThread")) {
    if (mBreaker)
        mBreaker->add(*this);
}

BluetoothDriver::~BluetoothDriver() {
    if (mBreaker)
        mBreaker->remove(*this);
    close();
}

error_code BluetoothDriver::open(const Guid& interfaceGuid, std::uint32_t flags,
                                 RemovalCallback removalCallback) {
    std::unique_lock life(mLife);
    if (mHandle != DriverApi::kInvalidHandle) {
        ORB_LOG(kLogWarning, "%s() Already open");
        return DriverErrors::getErrorCode(DriverErrors::AlreadyOpen);
    }
    std::wstring path;
    if (const error_code ec = getUnboundDevicePath(interfaceGuid, path, true)) {
        ORB_LOG(kLogError, "%s() getUnboundDevicePath error %d", ec.value());
        return explainMissingDevice(interfaceGuid, ec);
    }
    if (path.empty()) {
        ORB_LOG(kLogError, "%s() device path is empty");
        return DriverErrors::getErrorCode(DriverErrors::EmptyPath);
    }
    ORB_LOG(kLogDebug, "%s() Opening %ls", path.c_str());
    if (const error_code ec =
            mExclusivePath ? openExclusively(path, flags) : openLocked(path, flags))
        return ec;
    {
        const std::lock_guard lock(mMutex);
        mRemovalCallback = std::move(removalCallback);
    }
    if (!startDeviceRemovalMonitoring())
        ORB_LOG(kLogError, "%s() unable to start device removal monitoring, non-fatal error");
    life.unlock();
    if (mBreaker && mBreaker->isBreaking()) {
        close();
        return driverError(win32::kErrorOperationAborted, "Driver:CreateFile");
    }
    return {};
}

// A driver that is installed and not running shows only among the devices that are not present.
error_code BluetoothDriver::explainMissingDevice(const Guid& guid, error_code firstFailure) {
    if (firstFailure.value() != int{win32::kErrorNoMoreItems})
        return firstFailure;
    std::wstring path;
    const error_code ec = getUnboundDevicePath(guid, path, false);
    if (!ec)
        return DriverErrors::getErrorCode(DriverErrors::DriverFailedToLoad);
    if (ec.value() == int{win32::kErrorNoMoreItems})
        return DriverErrors::getErrorCode(DriverErrors::DriverNotInstalled);
    return firstFailure;
}

error_code BluetoothDriver::getUnboundDevicePath(const Guid& guid, std::wstring& path,
                                                 bool presentOnly) {
    const std::uint32_t flags =
        DriverApi::kDigcfDeviceInterface | (presentOnly ? DriverApi::kDigcfPresent : 0);
    DeviceInfoList list(mApi);
    if (const auto error = mApi.setupDiGetClassDevs(guid, flags, list.out())) {
        ORB_LOG(kLogError, "%s() SetupDiGetClassDevs() failed, error %d", static_cast<int>(error));
        return driverError(error, "Driver:SetupDiGetClassDevs");
    }

    DriverApi::InterfaceData data;
    DriverApi::Error end = 0;
    std::uint32_t index = 0;
    while (!(end = mApi.setupDiEnumDeviceInterfaces(list.get(), guid, index, data))) {
        std::wstring candidate;
        const DevicePathError error = readDevicePath(mApi, list.get(), data, candidate);
        if (error.detail) {
            ORB_LOG(kLogError, "%s() SetupDiGetDeviceInterfaceDetail() failed, error %d",
                    static_cast<int>(error.detail));
            return driverError(error.detail, "Driver:SetupDiGetDeviceInterfaceDetail");
        }
        if (error.allocation) {
            ORB_LOG(kLogError, "%s() device interface data allocation error %d",
                    static_cast<int>(error.allocation));
            return driverError(error.allocation, "Driver:LocalAlloc");
        }
        if (isPrivateDriverPath(candidate)) {
            path = std::move(candidate);
            return {};
        }
        ++index;
    }
    if (end == win32::kErrorNoMoreItems && index > 0) {
        ORB_LOG(kLogError, "%s() unable to find suitable device");
        return genericError(generic::kNoSuchDevice);
    }
    ORB_LOG(kLogError, "%s() SetupDiEnumDeviceInterfaces() failed, error %d",
            static_cast<int>(end));
    return driverError(end, "Driver:SetupDiEnumDeviceInterfaces");
}

// The list stays locked while the device is opened, so that two instances can't take one path.
error_code BluetoothDriver::openExclusively(const std::wstring& path, std::uint32_t flags) {
    ExclusivePaths& held = exclusivePaths();
    const std::lock_guard lock(held.mutex);
    if (std::ranges::find(held.paths, path) != held.paths.end())
        return DriverErrors::getErrorCode(DriverErrors::AlreadyOpen);
    if (const error_code ec = openLocked(path, flags))
        return ec;
    ORB_LOG(kLogDebug, "%s() Adding %ls to map", path.c_str());
    held.paths.push_back(path);
    return {};
}

error_code BluetoothDriver::openLocked(const std::wstring& path, std::uint32_t flags) {
    DriverApi::Handle opened = DriverApi::kInvalidHandle;
    const auto error = mApi.createFile(path, DriverApi::kGenericRead | DriverApi::kGenericWrite,
                                       DriverApi::kFileShareRead | DriverApi::kFileShareWrite,
                                       DriverApi::kOpenExisting, flags, opened);
    if (error) {
        ORB_LOG(kLogError, "%s() unable to open I/O device handle, device path: %ls, error %d",
                path.c_str(), static_cast<int>(error));
        return error == win32::kErrorFileNotFound
                   ? DriverErrors::getErrorCode(DriverErrors::DriverNotInstalled)
                   : driverError(error, "Driver:CreateFile");
    }
    {
        const std::lock_guard lock(mMutex);
        mDevicePath = path;
    }
    ++mOpening;
    mHandle = opened;
    mUses.open();
    return {};
}

bool BluetoothDriver::startDeviceRemovalMonitoring() {
    if (mNotification != kNoNotification) {
        ORB_LOG(kLogError, "%s() Already monitoring device handle, device path: %ls",
                mDevicePath.c_str());
        return false;
    }
    DriverApi::NotifyFilter filter{};
    filter.size = sizeof(filter);
    filter.type = DriverApi::kNotifyFilterDeviceHandle;
    filter.target = mHandle;
    const auto error = mApi.registerNotification(filter, this, &onNotification, mNotification);
    if (error)
        ORB_LOG(kLogError,
                "%s() Unable to register device notification for device path %ls. Error 0x%x",
                mDevicePath.c_str(), error);
    return error == 0;
}

DriverApi::Error BluetoothDriver::onNotification(void* context, std::uint32_t action) {
    auto* driver = static_cast<BluetoothDriver*>(context);
    // Only posts: close() waits for this call to end, and may hold what the callback needs.
    if (driver && action == DriverApi::kNotifyActionQueryRemove)
        driver->mMonitoringThread->post(
            [driver, opening = driver->mOpening.load()] { driver->onDriverRemoval(opening); });
    return win32::kErrorSuccess;
}

void BluetoothDriver::onDriverRemoval(std::uint64_t opening) {
    std::unique_lock lock(mMutex);
    if (opening != mOpening)
        return;
    const std::wstring path = mDevicePath;
    const RemovalCallback removed = mRemovalCallback;
    lock.unlock();
    ORB_LOG(kLogWarning, "%s() Driver removal notification for device path %ls", path.c_str());
    if (removed)
        removed(genericError(generic::kNoSuchDevice));
}

void BluetoothDriver::close() {
    const std::lock_guard life(mLife);
    const DriverApi::Handle notification = std::exchange(mNotification, kNoNotification);
    if (notification != kNoNotification)
        mApi.unregisterNotification(notification);
    if (mHandle != DriverApi::kInvalidHandle) {
        const std::wstring path = devicePath();
        ORB_LOG(kLogDebug, "%s() Closing %ls device", path.c_str());
        closeHandle();
        ORB_LOG(kLogDebug, "%s() Closed %ls device", path.c_str());
        if (mExclusivePath) {
            ORB_LOG(kLogDebug, "%s() Removing %ls from map", path.c_str());
            releaseExclusivePath(path);
        }
    }
    RemovalCallback dropped;
    const std::lock_guard lock(mMutex);
    mDevicePath.clear();
    mRemovalCallback.swap(dropped);
}

void BluetoothDriver::closeHandle() {
    do
        mApi.cancelRequests(mHandle);
    while (!mUses.shut(kCancelAgain));
    mApi.closeHandle(mHandle.exchange(DriverApi::kInvalidHandle));
}

error_code BluetoothDriver::getVersion(std::uint32_t requestCode, std::int16_t& out) {
    const Use use(*this);
    if (!use)
        return driverError(win32::kErrorInvalidHandle, "Driver:NotOpen");
    std::uint32_t returned = 0;
    const auto error =
        mApi.deviceIoControl(use.handle(), requestCode, nullptr, 0, &out, sizeof(out), returned);
    if (!error)
        return {};
    ORB_LOG(kLogError, "%s() DeviceIoControl failed with error %d, device path: %ls",
            static_cast<int>(error), devicePath().c_str());
    if (error == win32::kErrorInvalidFunction)
        ORB_LOG(kLogError, "%s() Old driver. Version not supported");
    return driverError(error, "Driver:DeviceIoControl");
}

std::wstring BluetoothDriver::devicePath() const {
    const std::lock_guard lock(mMutex);
    return mDevicePath;
}

} // namespace orbelantine
