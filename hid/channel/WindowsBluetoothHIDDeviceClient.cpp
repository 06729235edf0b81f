#include "hid/channel/WindowsBluetoothHIDDeviceClient.h"

#include "bluetooth/DeviceBreaker.h"
#include "bluetooth/DriverHandles.h"
#include "bluetooth/WindowsBluetoothHIDDevice.h"
#include "core/common/OSAL.h"
#include "core/common/log/Log.h"
#include "hid/channel/LocalRadioApi.h"

#include <algorithm>
#include <array>
#include <system_error>

namespace orbelantine {

ORB_OSAL_REGISTER(IBluetoothHIDDeviceClient, WindowsBluetoothHIDDeviceClient,
                  "WindowsBluetoothHIDDeviceClient");

namespace {

using RegistryKey = ApiHandle<LocalRadioApi, &LocalRadioApi::regCloseKey>;
using RadioSearch = ApiHandle<LocalRadioApi, &LocalRadioApi::bluetoothFindRadioClose>;

constexpr std::uint32_t kRelativeMouse = 2;
constexpr std::uint32_t kTypeOfComputerName = 0;

constexpr Guid kBluetoothSetupClass = {
    0xE0CBF06C, 0xCD8B, 0x4647, {0xBB, 0x8A, 0x26, 0x3B, 0x43, 0xF0, 0xF9, 0x74}};
constexpr const wchar_t* kUsbDeviceInterface = L"#{a5dcbf10-6530-11d2-901f-00c04fb951ed}";
constexpr std::uint32_t kReloadRequest = 0x411008;
constexpr std::uint32_t kReloadLocalName = 4;

constexpr std::uint32_t kInstanceIdCapacity = 200;
constexpr std::uint32_t kComputerNameCapacity = 1024;

/// The answer counts for nothing, so that all queries of the process may be broken together.
DeviceBreaker& queries() {
    static DeviceBreaker& breaker = *new DeviceBreaker;
    return breaker;
}

std::wstring usbDevicePath(std::wstring instanceId) {
    std::ranges::replace(instanceId, L'\\', L'#');
    return L"\\\\.\\" + instanceId + kUsbDeviceInterface;
}

std::wstring deviceParametersKey(const std::wstring& instanceId) {
    return L"SYSTEM\\CurrentControlSet\\Enum\\" + instanceId + L"\\Device Parameters";
}

} // namespace

WindowsBluetoothHIDDeviceClient::WindowsBluetoothHIDDeviceClient()
    : WindowsBluetoothHIDDeviceClient(DriverApi::system(), LocalRadioApi::system()) {}

WindowsBluetoothHIDDeviceClient::WindowsBluetoothHIDDeviceClient(DriverApi& driverApi,
                                                                 LocalRadioApi& radioApi)
    : mDriverApi(driverApi)
    , mRadioApi(radioApi) {
    queryHidType();
}

void WindowsBluetoothHIDDeviceClient::queryHidType() {
    mHidType = kRelativeMouse;
    try {
        WindowsBluetoothHIDDevice device(mDriverApi, IClock::system(), &queries());
        const auto onRemoval = [](error_code reason) {
            ORB_LOG(kLogWarning, "%s() System initiated device removal. Error: %s",
                    reason.message().c_str());
        };
        // Asked and not used: the input path relies on a relative mouse, whatever the answer.
        std::uint32_t answer = 0;
        (void)device.open(onRemoval);
        (void)device.getType(answer);
        device.close();
    } catch (const std::system_error& e) {
        ORB_LOG(kLogError, "%s() no thread can be started: %s", e.what());
    }
}

void WindowsBluetoothHIDDeviceClient::breakQueries() {
    const DeviceBreaker::Breaking breaking(queries());
}

std::uint32_t WindowsBluetoothHIDDeviceClient::getType() {
    return mHidType;
}

bool WindowsBluetoothHIDDeviceClient::setLocalDeviceName(const std::string& name) {
    const std::wstring instanceId = getInstanceID();
    if (instanceId.empty())
        return false;

    const std::wstring path = usbDevicePath(instanceId);
    DriverFile device(mDriverApi);
    if (const auto error = mDriverApi.createFile(path, DriverApi::kGenericWrite, 0,
                                                 DriverApi::kOpenExisting, 0, device.out())) {
        ORB_LOG(kLogError, "%s() CreateFile(%ls) failed with error %d", path.c_str(),
                static_cast<int>(error));
        return false;
    }
    const std::wstring keyPath = deviceParametersKey(instanceId);
    RegistryKey key(mRadioApi);
    if (const auto error = mRadioApi.regOpenKeyEx(LocalRadioApi::kLocalMachine, keyPath,
                                                  LocalRadioApi::kKeySetValue, key.out())) {
        ORB_LOG(kLogError, "%s() RegOpenKeyEx(%ls) failed with error %d", keyPath.c_str(),
                static_cast<int>(error));
        return false;
    }
    if (const auto error =
            mRadioApi.regSetValueEx(key.get(), L"Local Name", LocalRadioApi::kRegBinary,
                                    name.data(), static_cast<std::uint32_t>(name.size()))) {
        ORB_LOG(kLogError, "%s() RegSetValueEx(%s) failed with error %d", name.c_str(),
                static_cast<int>(error));
        return false;
    }
    std::uint32_t returned = 0;
    if (const auto error =
            mDriverApi.deviceIoControl(device.get(), kReloadRequest, &kReloadLocalName,
                                       sizeof(kReloadLocalName), nullptr, 0, returned)) {
        ORB_LOG(kLogError, "%s() DeviceIoControl failed with error %d", static_cast<int>(error));
        return false;
    }
    return true;
}

std::wstring WindowsBluetoothHIDDeviceClient::getInstanceID() {
    DeviceInfoList list(mDriverApi);
    if (const auto error = mDriverApi.setupDiGetClassDevs(kBluetoothSetupClass,
                                                          DriverApi::kDigcfPresent, list.out())) {
        ORB_LOG(kLogError, "%s() SetupDiGetClassDevs failed with error %d",
                static_cast<int>(error));
        return {};
    }
    LocalRadioApi::DevInfoData data;
    for (std::uint32_t index = 0; !mRadioApi.setupDiEnumDeviceInfo(list.get(), index, data);
         ++index) {
        std::array<wchar_t, kInstanceIdCapacity> id{};
        if (mRadioApi.cmGetDeviceId(data.devInst, id.data(), kInstanceIdCapacity))
            continue;
        std::wstring instanceId(id.data());
        if (instanceId.starts_with(L"USB"))
            return instanceId;
    }
    return {};
}

void WindowsBluetoothHIDDeviceClient::restoreLocalDeviceName() {
    if (mHidType != kTypeOfComputerName)
        return;
    std::array<wchar_t, kComputerNameCapacity> wide{};
    std::uint32_t size = kComputerNameCapacity;
    if (mRadioApi.getComputerName(wide.data(), size))
        return;
    std::string name;
    for (const wchar_t c : std::wstring(wide.data()))
        name.push_back(static_cast<char>(c));
    if (setLocalDeviceName(name))
        ORB_LOG(kLogInfo, "%s: Reset device name back to %s", name.c_str());
    else
        ORB_LOG(kLogError, "%s: Failed to reset device name to %s", name.c_str());
}

bool WindowsBluetoothHIDDeviceClient::getRadioDeviceName(std::wstring& name) {
    RadioSearch search(mRadioApi);
    DriverFile radio(mDriverApi);
    if (const auto error = mRadioApi.bluetoothFindFirstRadio(search.out(), radio.out())) {
        ORB_LOG(kLogError, "%s() BluetoothFindFirstRadio returned NULL with error %d",
                static_cast<int>(error));
        return false;
    }
    LocalRadioApi::RadioInfo info;
    if (const auto error = mRadioApi.bluetoothGetRadioInfo(radio.get(), info)) {
        ORB_LOG(kLogError, "%s() BluetoothGetRadioInfo failed with error %d",
                static_cast<int>(error));
        return false;
    }
    name = info.name;
    return true;
}

} // namespace orbelantine
