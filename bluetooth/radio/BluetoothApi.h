#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace orbelantine {

/// The calls of the Windows Bluetooth API, and the two that reach its window, one operation for
/// each; the radio is the one that the system chooses where none is named. An operation returns the
/// system's error number, 0 for success, whether the call returns it or leaves it to GetLastError;
/// outputs are meaningful only then. Any thread may call.
class BluetoothApi {
  public:
    using Error = std::uint32_t;
    using Handle = std::intptr_t;
    using Bool = std::int32_t;
    using Name = std::array<char16_t, 248>;

    static constexpr Handle kNull = 0;
    static constexpr std::uint32_t kMitmProtectionRequiredBonding = 3;
    static constexpr std::uint32_t kWmCommand = 273;

    /// BLUETOOTH_FIND_RADIO_PARAMS.
    struct FindRadioParams {
        std::uint32_t size = sizeof(FindRadioParams);
    };

    static_assert(sizeof(FindRadioParams) == 4);

    /// BLUETOOTH_RADIO_INFO.
    struct RadioInfo {
        std::uint32_t size = sizeof(RadioInfo);
        std::uint64_t address = 0;
        Name name{};
        std::uint32_t deviceClass = 0;
        std::uint16_t lmpSubversion = 0;
        std::uint16_t manufacturer = 0;
    };

    static_assert(sizeof(RadioInfo) == 520);

    /// BLUETOOTH_DEVICE_SEARCH_PARAMS.
    struct DeviceSearchParams {
        std::uint32_t size = sizeof(DeviceSearchParams);
        Bool returnAuthenticated = 0;
        Bool returnRemembered = 0;
        Bool returnUnknown = 0;
        Bool returnConnected = 0;
        Bool issueInquiry = 0;
        std::uint8_t timeoutMultiplier = 0;
        Handle radio = kNull;
    };

    static_assert(sizeof(DeviceSearchParams) == 40);

    /// SYSTEMTIME.
    using SystemTime = std::array<std::uint16_t, 8>;

    /// BLUETOOTH_DEVICE_INFO.
    struct DeviceInfo {
        std::uint32_t size = sizeof(DeviceInfo);
        std::uint64_t address = 0;
        std::uint32_t deviceClass = 0;
        Bool connected = 0;
        Bool remembered = 0;
        Bool authenticated = 0;
        SystemTime lastSeen{};
        SystemTime lastUsed{};
        Name name{};
    };

    static_assert(sizeof(DeviceInfo) == 560);

    /// BLUETOOTH_AUTHENTICATION_CALLBACK_PARAMS; `number` is the numeric value or the passkey.
    struct AuthenticationParams {
        DeviceInfo device;
        std::uint32_t method = 0;
        std::uint32_t ioCapability = 0;
        std::uint32_t requirements = 0;
        std::uint32_t number = 0;
    };

    static_assert(sizeof(AuthenticationParams) == 576);

    /// BLUETOOTH_AUTHENTICATE_RESPONSE for the methods that take a number.
    struct AuthenticationResponse {
        std::uint64_t address = 0;
        std::uint32_t method = 0;
        std::uint32_t number = 0;
        std::array<std::byte, 28> unused{};
        std::uint8_t negative = 0;
    };

    static_assert(sizeof(AuthenticationResponse) == 48);

    /// Runs on a thread of the system, and may still be on its way when its registration has ended.
    using AuthenticationCallback = Bool (*)(void* context, AuthenticationParams* params);

    virtual ~BluetoothApi() = default;

    /// What the calling thread's last call left to GetLastError. A call that returns its error may
    /// leave another one there.
    [[nodiscard]] virtual Error lastError() = 0;

    [[nodiscard]] virtual Error bluetoothFindFirstRadio(const FindRadioParams& params,
                                                        Handle& search, Handle& radio) = 0;
    virtual void bluetoothFindRadioClose(Handle search) = 0;
    /// Returns its error.
    [[nodiscard]] virtual Error bluetoothGetRadioInfo(Handle radio, RadioInfo& info) = 0;
    virtual void closeHandle(Handle radio) = 0;

    [[nodiscard]] virtual Error bluetoothFindFirstDevice(const DeviceSearchParams& params,
                                                         DeviceInfo& info, Handle& search) = 0;
    /// False when there is no other.
    [[nodiscard]] virtual bool bluetoothFindNextDevice(Handle search, DeviceInfo& info) = 0;
    virtual void bluetoothFindDeviceClose(Handle search) = 0;

    /// False where it failed.
    [[nodiscard]] virtual bool bluetoothEnableDiscovery(bool enabled) = 0;
    [[nodiscard]] virtual bool bluetoothIsDiscoverable() = 0;

    /// Without window and out-of-band data; blocks as long as the system's dialog. Returns its
    /// error.
    [[nodiscard]] virtual Error bluetoothAuthenticateDeviceEx(DeviceInfo& info,
                                                              std::uint32_t requirements) = 0;
    /// Returns its error.
    [[nodiscard]] virtual Error
    bluetoothSendAuthenticationResponseEx(const AuthenticationResponse& response) = 0;
    /// Returns its error.
    [[nodiscard]] virtual Error
    bluetoothRegisterForAuthenticationEx(const DeviceInfo& info, AuthenticationCallback callback,
                                         void* context, Handle& registration) = 0;
    virtual void bluetoothUnregisterAuthentication(Handle registration) = 0;
    /// Returns its error.
    [[nodiscard]] virtual Error bluetoothRemoveDevice(std::uint64_t address) = 0;

    /// The first window of the class, or kNull.
    [[nodiscard]] virtual Handle findWindow(const wchar_t* className) = 0;
    [[nodiscard]] virtual Error postMessage(Handle window, std::uint32_t message,
                                            std::uintptr_t wParam, std::intptr_t lParam) = 0;

    /// The process's real system; lives until the process ends. On Windows only.
    static BluetoothApi& system();
};

} // namespace orbelantine
