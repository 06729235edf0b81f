#pragma once

#include "bluetooth/DriverApi.h"
#include "bluetooth/DriverProtocol.h"
#include "core/common/errors/ErrorCode.h"

#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine::test {

/// The system and the private driver as a script tells them. Records what it was asked, and knows
/// what was not given back. Any thread may call; the public fields are for when none does.
class FakeDriverApi : public DriverApi {
  public:
    using Bytes = std::vector<std::uint8_t>;

    struct Opening {
        std::wstring path;
        std::uint32_t access;
        std::uint32_t share;
        std::uint32_t disposition;
        std::uint32_t flags;
        bool operator==(const Opening&) const = default;
    };

    struct Request {
        std::uint32_t code;
        Bytes input;
        bool operator==(const Request&) const = default;
    };

    /// What went down on a channel, by the PSM that it was connected to; 0 without one.
    struct Write {
        std::uint16_t psm;
        Bytes bytes;
        bool operator==(const Write&) const = default;
    };

    static constexpr const wchar_t* kHidPath = LR"(\\?\usb#{4df52311}_LOCALMFG&0012#1)";

    /// A device of the class, in the order of enumeration; `present` off is installed only.
    void simulateDevice(const Guid& interfaceClass, const std::wstring& path, bool present = true) {
        mDevices.push_back({interfaceClass, path, present});
    }

    /// A HID driver that works.
    void simulateHidDriver() { simulateDevice(driver::kHidInterfaces[0], kHidPath); }

    std::int16_t version = driver::kExpectedHidVersion;
    std::uint32_t type = 0;
    /// A channel that the peer refuses.
    std::uint16_t refusedPsm = 0;
    /// Requests of that code don't come back until they are cancelled.
    std::uint32_t hangingCode = 0;
    /// How all calls of a name fail; 0 for not at all.
    std::map<std::string, Error> failures;
    /// Runs within each WriteFile.
    std::function<void()> onWrite = [] {};

    /// The names of the calls that can fail, and what they asked, in order.
    std::vector<std::string> calls;
    std::vector<Opening> openings;
    std::vector<Request> requests;
    std::vector<Write> writes;

    /// Until a request hangs.
    void awaitHang() {
        std::unique_lock lock(mMutex);
        mChanged.wait(lock, [&] { return mHanging > 0; });
    }

    /// The peer closes its channels: the driver answers that none stands.
    void simulateChannelsGone() {
        const std::lock_guard lock(mMutex);
        for (auto& [handle, file] : mFiles)
            file.stands = false;
    }

    /// The platform tells of the device's removal, on the calling thread.
    void simulateRemoval(std::uint32_t action = kNotifyActionQueryRemove) {
        const std::lock_guard lock(mNotificationMutex);
        for (const auto& [handle, notify] : mNotifications)
            notify(action);
    }

    /// The `number`-th call from the start fails, counted from 1.
    void simulateFailure(std::size_t number, Error error) { mFailingCall = {number, error}; }

    /// Handles, lists, memory blocks and notifications that were not given back.
    std::size_t held() const {
        const std::scoped_lock lock(mMutex, mNotificationMutex);
        return mLists.size() + mFiles.size() + mNotifications.size() + mMemoryBlocks;
    }

    std::size_t openFiles() const {
        const std::lock_guard lock(mMutex);
        return mFiles.size();
    }

    Error setupDiGetClassDevs(const Guid& classGuid, std::uint32_t flags, Handle& list) override {
        return call("SetupDiGetClassDevs", [&] {
            std::vector<std::wstring> paths;
            for (const auto& [guid, path, present] : mDevices)
                if (guid == classGuid && (present || !(flags & kDigcfPresent)))
                    paths.push_back(path);
            list = ++mLastHandle;
            mLists[list] = paths;
            return win32::kErrorSuccess;
        });
    }

    Error setupDiEnumDeviceInterfaces(Handle list, const Guid& classGuid, std::uint32_t index,
                                      InterfaceData& data) override {
        return call("SetupDiEnumDeviceInterfaces", [&] {
            data.classGuid = classGuid;
            data.reserved = index;
            return index < mLists.at(list).size() ? win32::kErrorSuccess : win32::kErrorNoMoreItems;
        });
    }

    Error setupDiGetDeviceInterfaceDetail(Handle list, const InterfaceData& data,
                                          InterfaceDetail* detail, std::uint32_t size,
                                          std::uint32_t& required) override {
        return call("SetupDiGetDeviceInterfaceDetail", [&]() -> Error {
            const std::wstring& path = mLists.at(list).at(data.reserved);
            required = static_cast<std::uint32_t>(4 + (path.size() + 1) * sizeof(wchar_t));
            if (!detail || size < required)
                return win32::kErrorInsufficientBuffer;
            if (detail->size != 8)
                return kErrorInvalidUserBuffer;
            std::wmemcpy(detail->devicePath, path.c_str(), path.size() + 1);
            return win32::kErrorSuccess;
        });
    }

    void setupDiDestroyDeviceInfoList(Handle list) override {
        const std::lock_guard lock(mMutex);
        mLists.erase(list);
    }

    Error localAlloc(std::size_t size, void*& memory) override {
        return call("LocalAlloc", [&] {
            memory = std::malloc(size);
            ++mMemoryBlocks;
            return win32::kErrorSuccess;
        });
    }

    void localFree(void* memory) override {
        const std::lock_guard lock(mMutex);
        std::free(memory);
        --mMemoryBlocks;
    }

    Error createFile(const std::wstring& path, std::uint32_t access, std::uint32_t share,
                     std::uint32_t disposition, std::uint32_t flags, Handle& file) override {
        return call("CreateFile", [&] {
            openings.push_back({path, access, share, disposition, flags});
            file = ++mLastHandle;
            mFiles[file] = {};
            return win32::kErrorSuccess;
        });
    }

    void closeHandle(Handle file) override {
        const std::lock_guard lock(mMutex);
        mFiles.erase(file);
    }

    void cancelRequests(Handle file) override {
        const std::lock_guard lock(mMutex);
        mFiles.at(file).cancelled = true;
        mChanged.notify_all();
    }

    Error deviceIoControl(Handle file, std::uint32_t code, const void* input,
                          std::uint32_t inputSize, void* output, std::uint32_t outputSize,
                          std::uint32_t& returned) override {
        return call("DeviceIoControl", [&]() -> Error {
            const auto* bytes = static_cast<const std::uint8_t*>(input);
            requests.push_back({code, Bytes(bytes, bytes + inputSize)});
            std::uint32_t answered = 0;
            if (mFiles.count(file) == 0)
                return win32::kErrorInvalidHandle;
            if (code == hangingCode)
                return hang(mFiles[file]);
            if (const Error error = answer(mFiles[file], requests.back(), answered, returned))
                return error;
            if (returned > outputSize)
                return win32::kErrorInsufficientBuffer;
            if (returned > 0)
                std::memcpy(output, &answered, returned);
            return win32::kErrorSuccess;
        });
    }

    Error writeFile(Handle file, const void* data, std::uint32_t size,
                    std::uint32_t& written) override {
        return call("WriteFile", [&] {
            onWrite();
            if (mFiles.count(file) == 0)
                return win32::kErrorInvalidHandle;
            const auto* bytes = static_cast<const std::uint8_t*>(data);
            writes.push_back({mFiles[file].psm, Bytes(bytes, bytes + size)});
            written = size;
            return win32::kErrorSuccess;
        });
    }

    Error registerNotification(const NotifyFilter& filter, void* context, NotifyCallback callback,
                               Handle& notification) override {
        return call("CM_Register_Notification", [&]() -> Error {
            const NotifyFilter ofFile{416, 0, 1, 0, filter.target, {}};
            if (mFiles.count(filter.target) == 0 || std::memcmp(&filter, &ofFile, 416) != 0)
                return kCrInvalidData;
            const std::lock_guard lock(mNotificationMutex);
            notification = ++mLastHandle;
            mNotifications[notification] = [=](std::uint32_t action) { callback(context, action); };
            return win32::kErrorSuccess;
        });
    }

    void unregisterNotification(Handle notification) override {
        const std::lock_guard lock(mNotificationMutex);
        mNotifications.erase(notification);
    }

  private:
    static constexpr Error kErrorInvalidUserBuffer = 1784;
    static constexpr Error kErrorConnectionRefused = 1225;
    static constexpr Error kCrInvalidData = 31;
    // Of the driver of the radio's USB device.
    static constexpr std::uint32_t kReloadLocalName = 0x411008;

    struct Device {
        Guid interfaceClass;
        std::wstring path;
        bool present;
    };

    struct OpenFile {
        std::uint16_t psm = 0;
        bool stands = false;
        bool cancelled = false;
    };

    /// Records the call, and fails it or makes it.
    template <class Action>
    Error call(const char* name, Action action) {
        const std::lock_guard lock(mMutex);
        calls.push_back(name);
        if (calls.size() == mFailingCall.first)
            return mFailingCall.second;
        if (const Error error = failures[name])
            return error;
        return static_cast<Error>(action());
    }

    /// Under the lock, which it lets go.
    Error hang(const OpenFile& file) {
        ++mHanging;
        mChanged.notify_all();
        std::unique_lock lock(mMutex, std::adopt_lock);
        mChanged.wait(lock, [&] { return file.cancelled; });
        lock.release();
        --mHanging;
        return win32::kErrorOperationAborted;
    }

    Error answer(OpenFile& file, const Request& request, std::uint32_t& output,
                 std::uint32_t& size) const {
        size = 4;
        switch (request.code) {
        case driver::kConnect:
            size = 0;
            file.psm = static_cast<std::uint16_t>(request.input.at(6) | request.input.at(7) << 8);
            file.stands = file.psm != refusedPsm;
            return file.stands ? win32::kErrorSuccess : kErrorConnectionRefused;
        case driver::kGetVersion:
        case driver::kGetHandsfreeVersion:
            size = 2;
            output = static_cast<std::uint16_t>(version);
            return win32::kErrorSuccess;
        case driver::kGetType:
            output = type;
            return win32::kErrorSuccess;
        case driver::kIsConnected:
            output = file.stands;
            return win32::kErrorSuccess;
        case kReloadLocalName:
            size = 0;
            return win32::kErrorSuccess;
        default:
            return win32::kErrorInvalidFunction;
        }
    }

    mutable std::mutex mMutex;
    // Held during callbacks, so that unregistering waits for them as the system does.
    mutable std::mutex mNotificationMutex;
    std::vector<Device> mDevices;
    int mHanging = 0;
    std::condition_variable mChanged;
    std::pair<std::size_t, Error> mFailingCall;

    Handle mLastHandle = 0;
    std::map<Handle, std::vector<std::wstring>> mLists;
    std::map<Handle, OpenFile> mFiles;
    std::map<Handle, std::function<void(std::uint32_t action)>> mNotifications;
    std::size_t mMemoryBlocks = 0;
};

} // namespace orbelantine::test
