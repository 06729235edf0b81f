#include "hid/channel/LocalRadioApi.h"

// clang-format off
#include <winsock2.h>
#include <windows.h>
#include <bluetoothapis.h>
#include <cfgmgr32.h>
#include <setupapi.h>
// clang-format on

#include <bit>

namespace orbelantine {

namespace {

static_assert(sizeof(LocalRadioApi::DevInfoData) == sizeof(SP_DEVINFO_DATA));
static_assert(sizeof(BLUETOOTH_RADIO_INFO) == 520);
static_assert(LocalRadioApi::kKeySetValue == KEY_SET_VALUE);
static_assert(LocalRadioApi::kRegBinary == REG_BINARY);

HANDLE handleOf(LocalRadioApi::Handle handle) {
    return reinterpret_cast<HANDLE>(handle);
}

HKEY keyOf(LocalRadioApi::Handle handle) {
    return reinterpret_cast<HKEY>(handle);
}

LocalRadioApi::Error resultOf(BOOL succeeded) {
    return succeeded ? ERROR_SUCCESS : GetLastError();
}

class WindowsLocalRadioApi final : public LocalRadioApi {
  public:
    Error setupDiEnumDeviceInfo(Handle list, std::uint32_t index, DevInfoData& data) override {
        SP_DEVINFO_DATA native{};
        native.cbSize = sizeof(native);
        const Error error = resultOf(SetupDiEnumDeviceInfo(handleOf(list), index, &native));
        data = std::bit_cast<DevInfoData>(native);
        return error;
    }

    Error cmGetDeviceId(std::uint32_t devInst, wchar_t* id, std::uint32_t capacity) override {
        return CM_Get_Device_IDW(devInst, id, capacity, 0);
    }

    Error regOpenKeyEx(Handle root, const std::wstring& path, std::uint32_t access,
                       Handle& key) override {
        HKEY opened = nullptr;
        const LSTATUS error = RegOpenKeyExW(keyOf(root), path.c_str(), 0, access, &opened);
        if (error == ERROR_SUCCESS)
            key = reinterpret_cast<Handle>(opened);
        return static_cast<Error>(error);
    }

    Error regSetValueEx(Handle key, const std::wstring& name, std::uint32_t type, const void* data,
                        std::uint32_t size) override {
        return static_cast<Error>(RegSetValueExW(keyOf(key), name.c_str(), 0, type,
                                                 static_cast<const BYTE*>(data), size));
    }

    void regCloseKey(Handle key) override { RegCloseKey(keyOf(key)); }

    Error getComputerName(wchar_t* name, std::uint32_t& size) override {
        DWORD length = size;
        const Error error = resultOf(GetComputerNameW(name, &length));
        size = length;
        return error;
    }

    Error bluetoothFindFirstRadio(Handle& search, Handle& radio) override {
        BLUETOOTH_FIND_RADIO_PARAMS params{sizeof(params)};
        HANDLE firstRadio = nullptr;
        const HBLUETOOTH_RADIO_FIND found = BluetoothFindFirstRadio(&params, &firstRadio);
        if (!found)
            return GetLastError();
        search = reinterpret_cast<Handle>(found);
        radio = reinterpret_cast<Handle>(firstRadio);
        return ERROR_SUCCESS;
    }

    Error bluetoothGetRadioInfo(Handle radio, RadioInfo& info) override {
        BLUETOOTH_RADIO_INFO native{};
        native.dwSize = info.size;
        const DWORD error = BluetoothGetRadioInfo(handleOf(radio), &native);
        if (error == ERROR_SUCCESS)
            info.name = native.szName;
        return error;
    }

    void bluetoothFindRadioClose(Handle search) override {
        BluetoothFindRadioClose(reinterpret_cast<HBLUETOOTH_RADIO_FIND>(search));
    }
};

} // namespace

LocalRadioApi& LocalRadioApi::system() {
    static WindowsLocalRadioApi api;
    return api;
}

} // namespace orbelantine
