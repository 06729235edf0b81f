#include "bluetooth/radio/BluetoothApi.h"

// clang-format off
#include <winsock2.h>
#include <windows.h>
#include <bluetoothapis.h>
// clang-format on

#include <bit>
#include <cstddef>

namespace orbelantine {

namespace {

using RadioApi = BluetoothApi;

static_assert(sizeof(RadioApi::FindRadioParams) == sizeof(BLUETOOTH_FIND_RADIO_PARAMS));
static_assert(sizeof(RadioApi::RadioInfo) == sizeof(BLUETOOTH_RADIO_INFO));
static_assert(offsetof(RadioApi::RadioInfo, address) == offsetof(BLUETOOTH_RADIO_INFO, address));
static_assert(offsetof(RadioApi::RadioInfo, name) == offsetof(BLUETOOTH_RADIO_INFO, szName));
static_assert(sizeof(RadioApi::DeviceSearchParams) == sizeof(BLUETOOTH_DEVICE_SEARCH_PARAMS));
static_assert(offsetof(RadioApi::DeviceSearchParams, timeoutMultiplier) ==
              offsetof(BLUETOOTH_DEVICE_SEARCH_PARAMS, cTimeoutMultiplier));
static_assert(sizeof(RadioApi::SystemTime) == sizeof(SYSTEMTIME));
static_assert(sizeof(RadioApi::DeviceInfo) == sizeof(BLUETOOTH_DEVICE_INFO));
static_assert(offsetof(RadioApi::DeviceInfo, address) == offsetof(BLUETOOTH_DEVICE_INFO, Address));
static_assert(offsetof(RadioApi::DeviceInfo, deviceClass) ==
              offsetof(BLUETOOTH_DEVICE_INFO, ulClassofDevice));
static_assert(offsetof(RadioApi::DeviceInfo, name) == offsetof(BLUETOOTH_DEVICE_INFO, szName));
static_assert(sizeof(RadioApi::AuthenticationParams) ==
              sizeof(BLUETOOTH_AUTHENTICATION_CALLBACK_PARAMS));
static_assert(offsetof(RadioApi::AuthenticationParams, method) ==
              offsetof(BLUETOOTH_AUTHENTICATION_CALLBACK_PARAMS, authenticationMethod));
static_assert(offsetof(RadioApi::AuthenticationParams, number) ==
              offsetof(BLUETOOTH_AUTHENTICATION_CALLBACK_PARAMS, Numeric_Value));
static_assert(sizeof(RadioApi::AuthenticationResponse) == sizeof(BLUETOOTH_AUTHENTICATE_RESPONSE));
static_assert(offsetof(RadioApi::AuthenticationResponse, number) ==
              offsetof(BLUETOOTH_AUTHENTICATE_RESPONSE, numericCompInfo));
static_assert(offsetof(RadioApi::AuthenticationResponse, negative) ==
              offsetof(BLUETOOTH_AUTHENTICATE_RESPONSE, negativeResponse));
static_assert(RadioApi::kMitmProtectionRequiredBonding == MITMProtectionRequiredBonding);
static_assert(RadioApi::kWmCommand == WM_COMMAND);

void* radioPointer(RadioApi::Handle handle) {
    return reinterpret_cast<void*>(handle);
}

RadioApi::Error radioResult(BOOL succeeded) {
    return succeeded ? ERROR_SUCCESS : GetLastError();
}

class WindowsBluetoothApi final : public BluetoothApi {
  public:
    Error lastError() override { return GetLastError(); }

    Error bluetoothFindFirstRadio(const FindRadioParams& params, Handle& search,
                                  Handle& radio) override {
        auto native = std::bit_cast<BLUETOOTH_FIND_RADIO_PARAMS>(params);
        HANDLE first = nullptr;
        const HBLUETOOTH_RADIO_FIND found = BluetoothFindFirstRadio(&native, &first);
        if (!found)
            return GetLastError();
        search = reinterpret_cast<Handle>(found);
        radio = reinterpret_cast<Handle>(first);
        return ERROR_SUCCESS;
    }

    void bluetoothFindRadioClose(Handle search) override {
        BluetoothFindRadioClose(radioPointer(search));
    }

    Error bluetoothGetRadioInfo(Handle radio, RadioInfo& info) override {
        auto native = std::bit_cast<BLUETOOTH_RADIO_INFO>(info);
        const Error error = BluetoothGetRadioInfo(radioPointer(radio), &native);
        info = std::bit_cast<RadioInfo>(native);
        return error;
    }

    void closeHandle(Handle radio) override { CloseHandle(radioPointer(radio)); }

    Error bluetoothFindFirstDevice(const DeviceSearchParams& params, DeviceInfo& info,
                                   Handle& search) override {
        auto nativeParams = std::bit_cast<BLUETOOTH_DEVICE_SEARCH_PARAMS>(params);
        auto native = std::bit_cast<BLUETOOTH_DEVICE_INFO>(info);
        const HBLUETOOTH_DEVICE_FIND found = BluetoothFindFirstDevice(&nativeParams, &native);
        if (!found)
            return GetLastError();
        info = std::bit_cast<DeviceInfo>(native);
        search = reinterpret_cast<Handle>(found);
        return ERROR_SUCCESS;
    }

    bool bluetoothFindNextDevice(Handle search, DeviceInfo& info) override {
        auto native = std::bit_cast<BLUETOOTH_DEVICE_INFO>(info);
        const bool found = BluetoothFindNextDevice(radioPointer(search), &native) != FALSE;
        info = std::bit_cast<DeviceInfo>(native);
        return found;
    }

    void bluetoothFindDeviceClose(Handle search) override {
        BluetoothFindDeviceClose(radioPointer(search));
    }

    bool bluetoothEnableDiscovery(bool enabled) override {
        return BluetoothEnableDiscovery(nullptr, enabled ? TRUE : FALSE) != FALSE;
    }

    bool bluetoothIsDiscoverable() override { return BluetoothIsDiscoverable(nullptr) != FALSE; }

    Error bluetoothAuthenticateDeviceEx(DeviceInfo& info, std::uint32_t requirements) override {
        auto native = std::bit_cast<BLUETOOTH_DEVICE_INFO>(info);
        const HRESULT error = BluetoothAuthenticateDeviceEx(
            nullptr, nullptr, &native, nullptr,
            static_cast<BLUETOOTH_AUTHENTICATION_REQUIREMENTS>(requirements));
        info = std::bit_cast<DeviceInfo>(native);
        return static_cast<Error>(error);
    }

    Error bluetoothSendAuthenticationResponseEx(const AuthenticationResponse& response) override {
        auto native = std::bit_cast<BLUETOOTH_AUTHENTICATE_RESPONSE>(response);
        return static_cast<Error>(BluetoothSendAuthenticationResponseEx(nullptr, &native));
    }

    Error bluetoothRegisterForAuthenticationEx(const DeviceInfo& info,
                                               AuthenticationCallback callback, void* context,
                                               Handle& registration) override {
        const auto native = std::bit_cast<BLUETOOTH_DEVICE_INFO>(info);
        HBLUETOOTH_AUTHENTICATION_REGISTRATION made = nullptr;
        // There is one calling convention, and the parameters have one layout.
        const HRESULT error = BluetoothRegisterForAuthenticationEx(
            &native, &made, reinterpret_cast<PFN_AUTHENTICATION_CALLBACK_EX>(callback), context);
        if (error == ERROR_SUCCESS)
            registration = reinterpret_cast<Handle>(made);
        return static_cast<Error>(error);
    }

    void bluetoothUnregisterAuthentication(Handle registration) override {
        BluetoothUnregisterAuthentication(radioPointer(registration));
    }

    Error bluetoothRemoveDevice(std::uint64_t address) override {
        BLUETOOTH_ADDRESS native{};
        native.ullLong = address;
        return BluetoothRemoveDevice(&native);
    }

    Handle findWindow(const wchar_t* className) override {
        return reinterpret_cast<Handle>(FindWindowW(className, nullptr));
    }

    Error postMessage(Handle window, std::uint32_t message, std::uintptr_t wParam,
                      std::intptr_t lParam) override {
        return radioResult(PostMessageW(reinterpret_cast<HWND>(window), message, wParam, lParam));
    }
};

} // namespace

BluetoothApi& BluetoothApi::system() {
    static WindowsBluetoothApi api;
    return api;
}

} // namespace orbelantine
