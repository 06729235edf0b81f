#pragma once

#include "bluetooth/Guid.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace orbelantine {

/// The system calls about the local radio and its name, one operation for each; those that the
/// driver needs too are DriverApi's. Every operation returns the system's error number in the
/// Windows numbering, 0 for success; outputs are meaningful only then. Any thread may call.
class LocalRadioApi {
  public:
    using Error = std::uint32_t;
    using Handle = std::intptr_t;

    static constexpr Handle kLocalMachine =
        static_cast<Handle>(static_cast<std::int32_t>(0x80000002));
    static constexpr std::uint32_t kKeySetValue = 0x2;
    static constexpr std::uint32_t kRegBinary = 3;

    /// SP_DEVINFO_DATA.
    struct DevInfoData {
        std::uint32_t size = sizeof(DevInfoData);
        Guid classGuid{};
        std::uint32_t devInst = 0;
        std::uintptr_t reserved = 0;
    };

    static_assert(sizeof(DevInfoData) == 32);

    /// BLUETOOTH_RADIO_INFO in its members that are read here; `size` is that of the Windows type.
    struct RadioInfo {
        std::uint32_t size = 520;
        std::wstring name;
    };

    virtual ~LocalRadioApi() = default;

    /// SetupDiEnumDeviceInfo on a list of DriverApi::setupDiGetClassDevs.
    [[nodiscard]] virtual Error setupDiEnumDeviceInfo(Handle list, std::uint32_t index,
                                                      DevInfoData& data) = 0;
    /// CM_Get_Device_IDW; `capacity` in characters, the terminator included.
    [[nodiscard]] virtual Error cmGetDeviceId(std::uint32_t devInst, wchar_t* id,
                                              std::uint32_t capacity) = 0;

    [[nodiscard]] virtual Error regOpenKeyEx(Handle root, const std::wstring& path,
                                             std::uint32_t access, Handle& key) = 0;
    [[nodiscard]] virtual Error regSetValueEx(Handle key, const std::wstring& name,
                                              std::uint32_t type, const void* data,
                                              std::uint32_t size) = 0;
    virtual void regCloseKey(Handle key) = 0;

    /// GetComputerNameW; `size` is the capacity in characters, and the length afterwards.
    [[nodiscard]] virtual Error getComputerName(wchar_t* name, std::uint32_t& size) = 0;

    [[nodiscard]] virtual Error bluetoothFindFirstRadio(Handle& search, Handle& radio) = 0;
    [[nodiscard]] virtual Error bluetoothGetRadioInfo(Handle radio, RadioInfo& info) = 0;
    virtual void bluetoothFindRadioClose(Handle search) = 0;

    /// The process's real system; lives until the process ends.
    static LocalRadioApi& system();
};

} // namespace orbelantine
