#include "bluetooth/DevicePath.h"

#include "core/common/errors/ErrorCode.h"

#include <memory>

namespace orbelantine {

namespace {

// Exactly these two spellings are the driver's; a mixed case is another device.
constexpr const wchar_t* kMarks[] = {L"}_LOCALMFG", L"}_localmfg"};

struct LocalFree {
    DriverApi* api;

    void operator()(void* memory) const { api->localFree(memory); }
};

} // namespace

bool isPrivateDriverPath(const std::wstring& path) {
    for (const wchar_t* mark : kMarks)
        if (path.find(mark) != std::wstring::npos)
            return true;
    return false;
}

DevicePathError readDevicePath(DriverApi& api, DriverApi::Handle list,
                               const DriverApi::InterfaceData& data, std::wstring& path) {
    std::uint32_t size = 0;
    const auto sizing = api.setupDiGetDeviceInterfaceDetail(list, data, nullptr, 0, size);
    if (sizing != 0 && sizing != win32::kErrorInsufficientBuffer)
        return {.detail = sizing};

    void* memory = nullptr;
    if (const auto error = api.localAlloc(size, memory))
        return {.allocation = error};
    const std::unique_ptr<void, LocalFree> owner(memory, LocalFree{&api});

    auto* detail = static_cast<DriverApi::InterfaceDetail*>(memory);
    detail->size = sizeof(DriverApi::InterfaceDetail);
    if (const auto error = api.setupDiGetDeviceInterfaceDetail(list, data, detail, size, size))
        return {.detail = error};
    path = &detail->devicePath[0];
    return {};
}

} // namespace orbelantine
