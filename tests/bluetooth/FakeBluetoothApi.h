#pragma once

#include "bluetooth/radio/BluetoothApi.h"
#include "core/common/errors/ErrorCode.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orbelantine::test {

/// The Windows Bluetooth stack as a script tells it. Records what it was asked, and knows what was
/// not given back. Any thread may call; the public fields are for when none does.
class FakeBluetoothApi final : public BluetoothApi {
  public:
    /// How calls of a name fail: what they return, and what they leave to GetLastError.
    std::map<std::string, std::pair<Error, Error>> failures;
    bool hasTrayWindow = true;

    void simulateRadio(std::uint64_t address, std::u16string_view name) {
        mRadio.address = address;
        std::ranges::copy(name, mRadio.name.begin());
    }

    void simulateDevice(std::uint64_t address, std::u16string_view name, std::uint32_t type) {
        mDevices.push_back(deviceInfo(address, name, type));
    }

    /// A peer called "Phone" asks to be paired by `method`, on the calling thread. It is told to
    /// whoever registered last, also when that one has unregistered. False if nobody ever did.
    bool simulateRequest(std::uint64_t address, std::uint32_t method = 3,
                         std::uint32_t number = 0) {
        AuthenticationParams params;
        params.device = deviceInfo(address, u"Phone", 0x5A020C);
        params.method = method;
        params.number = number;
        std::unique_lock lock(mMutex);
        const auto [callback, context] = mListener;
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

    Error bluetoothFindFirstRadio(const FindRadioParams&, Handle& search, Handle& radio) override {
        if (const Error error = begin("BluetoothFindFirstRadio"))
            return error;
        search = hold();
        radio = hold();
        return 0;
    }

    void bluetoothFindRadioClose(Handle search) override { giveBack(search); }

    Error bluetoothGetRadioInfo(Handle, RadioInfo& info) override {
        info = mRadio;
        return begin("BluetoothGetRadioInfo");
    }

    void closeHandle(Handle radio) override { giveBack(radio); }

    Error bluetoothFindFirstDevice(const DeviceSearchParams& p, DeviceInfo& info,
                                   Handle& search) override {
        if (const Error error = begin("BluetoothFindFirstDevice", p.size, p.returnAuthenticated,
                                      p.returnRemembered, p.returnUnknown, p.returnConnected,
                                      p.issueInquiry, int{p.timeoutMultiplier}, p.radio))
            return error;
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
        const bool done = !begin("BluetoothEnableDiscovery", enabled);
        mDiscoverable = done && enabled;
        return done;
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
        mListener = {callback, context};
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
        return hasTrayWindow && std::wstring_view(className) == kTrayClass ? 99 : kNull;
    }

    Error postMessage(Handle window, std::uint32_t message, std::uintptr_t wParam,
                      std::intptr_t lParam) override {
        return begin("PostMessageW", window, message, wParam, lParam);
    }

  private:
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
        std::ostringstream text;
        text << name;
        ((text << ' ' << arguments), ...);
        const std::lock_guard lock(mMutex);
        if (sizeof...(Arguments) > 0)
            mAsked.push_back(text.str());
        const auto failure = failures.find(name);
        if (failure == failures.end())
            return 0;
        mLastError = failure->second.second;
        return failure->second.first;
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
    std::pair<AuthenticationCallback, void*> mListener;
};

} // namespace orbelantine::test
