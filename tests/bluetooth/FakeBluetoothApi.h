#pragma once

#include "bluetooth/radio/BluetoothApi.h"
#include "core/common/errors/ErrorCode.h"

#include <algorithm>
#include <functional>
#include <map>
#include <mutex>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace orbelantine::test {

/// The Windows Bluetooth stack as a script tells it. Records what it was asked, and knows what was
/// not given back. Any thread may call; the public fields are for when none does.
class FakeBluetoothApi final : public BluetoothApi {
  public:
    static constexpr Handle kTrayWindow = 99;

    /// How a call of a name fails: what it returns, and what it leaves to GetLastError.
    struct Failure {
        Error returned;
        Error left;
    };

    std::map<std::string, Failure> failures;
    bool hasRadio = true;
    bool hasTrayWindow = true;
    /// Runs within each call, on its thread.
    std::function<void(std::string_view call)> onCall = [](std::string_view) {};

    void simulateRadio(std::uint64_t address, std::u16string_view name) {
        mRadio.address = address;
        std::ranges::copy(name, mRadio.name.begin());
    }

    void simulateDevice(std::uint64_t address, std::u16string_view name, std::uint32_t type) {
        mDevices.push_back(deviceInfo(address, name, type));
    }

    /// A peer asks to be paired, on the calling thread. It is told to whoever registered last, also
    /// when that one has unregistered meanwhile. False if nobody ever did.
    bool simulateRequest(std::uint64_t address, std::u16string_view name, std::uint32_t method,
                         std::uint32_t number) {
        AuthenticationParams params;
        params.device = deviceInfo(address, name, 0x5A020C);
        params.method = method;
        params.number = number;
        std::unique_lock lock(mMutex);
        const auto callback = mCallback;
        void* const context = mContext;
        lock.unlock();
        return callback != nullptr && callback(context, &params) == 1;
    }

    /// Each call since the last time with its arguments, but those that only read or give back.
    [[nodiscard]] std::vector<std::string> asked() {
        const std::lock_guard lock(mMutex);
        return std::exchange(mAsked, {});
    }

    /// Searches, radios and registrations that were not given back.
    [[nodiscard]] std::vector<Handle> held() const {
        const std::lock_guard lock(mMutex);
        return mHeld;
    }

    Error lastError() override { return mLastError; }

    Error bluetoothFindFirstRadio(const FindRadioParams& params, Handle& search,
                                  Handle& radio) override {
        if (const Error error = begin("BluetoothFindFirstRadio"))
            return error;
        if (params.size != 4 || !hasRadio)
            return hasRadio ? kInvalidParameter : Error{win32::kErrorNoMoreItems};
        search = hold();
        radio = hold();
        return 0;
    }

    void bluetoothFindRadioClose(Handle search) override { giveBack(search); }

    Error bluetoothGetRadioInfo(Handle, RadioInfo& info) override {
        if (const Error error = begin("BluetoothGetRadioInfo"))
            return error;
        if (info.size != 520)
            return kInvalidParameter;
        info = mRadio;
        return 0;
    }

    void closeHandle(Handle radio) override { giveBack(radio); }

    Error bluetoothFindFirstDevice(const DeviceSearchParams& p, DeviceInfo& info,
                                   Handle& search) override {
        if (const Error error = begin("BluetoothFindFirstDevice", p.size, p.returnAuthenticated,
                                      p.returnRemembered, p.returnUnknown, p.returnConnected,
                                      p.issueInquiry, int{p.timeoutMultiplier}, p.radio))
            return error;
        if (info.size != 560)
            return kInvalidParameter;
        mNext = 0;
        if (!bluetoothFindNextDevice(0, info))
            return win32::kErrorNoMoreItems;
        search = hold();
        return 0;
    }

    bool bluetoothFindNextDevice(Handle, DeviceInfo& info) override {
        if (mNext == mDevices.size())
            return false;
        info = mDevices[mNext++];
        return true;
    }

    void bluetoothFindDeviceClose(Handle search) override { giveBack(search); }

    bool bluetoothEnableDiscovery(bool enabled) override {
        if (begin("BluetoothEnableDiscovery", enabled))
            return false;
        mDiscoverable = enabled;
        return true;
    }

    bool bluetoothIsDiscoverable() override { return mDiscoverable; }

    Error bluetoothAuthenticateDeviceEx(DeviceInfo& info, std::uint32_t requirements) override {
        return begin("BluetoothAuthenticateDeviceEx", info.size, info.address, requirements);
    }

    Error bluetoothSendAuthenticationResponseEx(const AuthenticationResponse& r) override {
        return begin("BluetoothSendAuthenticationResponseEx", r.address, r.method, r.number,
                     int{r.negative});
    }

    Error bluetoothRegisterForAuthenticationEx(const DeviceInfo& info,
                                               AuthenticationCallback callback, void* context,
                                               Handle& registration) override {
        if (const Error error =
                begin("BluetoothRegisterForAuthenticationEx", info.size, info.address))
            return error;
        registration = hold();
        const std::lock_guard lock(mMutex);
        mCallback = callback;
        mContext = context;
        return 0;
    }

    void bluetoothUnregisterAuthentication(Handle registration) override {
        (void)begin("BluetoothUnregisterAuthentication");
        giveBack(registration);
    }

    Error bluetoothRemoveDevice(std::uint64_t address) override {
        return begin("BluetoothRemoveDevice", address);
    }

    Handle findWindow(const wchar_t* className) override {
        const bool isTray = std::wstring_view(className) == kTrayClass;
        return isTray && hasTrayWindow ? kTrayWindow : kNull;
    }

    Error postMessage(Handle window, std::uint32_t message, std::uintptr_t wParam,
                      std::intptr_t lParam) override {
        return begin("PostMessageW", window, message, wParam, lParam);
    }

  private:
    static constexpr Error kInvalidParameter = win32::kErrorInvalidParameter;
    static constexpr std::wstring_view kTrayClass = L"BluetoothNotificationAreaIconWindowClass";

    static DeviceInfo deviceInfo(std::uint64_t address, std::u16string_view name,
                                 std::uint32_t type) {
        DeviceInfo info;
        info.address = address;
        info.deviceClass = type;
        std::ranges::copy(name, info.name.begin());
        return info;
    }

    template <class... Arguments>
    [[nodiscard]] Error begin(const char* name, Arguments... arguments) {
        onCall(name);
        std::ostringstream text;
        text << name;
        ((text << ' ' << arguments), ...);
        const std::lock_guard lock(mMutex);
        if (sizeof...(Arguments) > 0)
            mAsked.push_back(text.str());
        const auto failure = failures.find(name);
        if (failure == failures.end())
            return 0;
        mLastError = failure->second.left;
        return failure->second.returned;
    }

    Handle hold() {
        const std::lock_guard lock(mMutex);
        mHeld.push_back(++mLastHandle);
        return mLastHandle;
    }

    void giveBack(Handle handle) {
        const std::lock_guard lock(mMutex);
        std::erase(mHeld, handle);
    }

    static inline thread_local Error mLastError = 0;
    mutable std::mutex mMutex;
    RadioInfo mRadio;
    std::vector<DeviceInfo> mDevices;
    std::size_t mNext = 0;
    bool mDiscoverable = false;
    std::vector<std::string> mAsked;
    Handle mLastHandle = 0;
    std::vector<Handle> mHeld;
    AuthenticationCallback mCallback = nullptr;
    void* mContext = nullptr;
};

} // namespace orbelantine::test
