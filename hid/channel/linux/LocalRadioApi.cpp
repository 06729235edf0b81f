#include "hid/channel/LocalRadioApi.h"

#include "core/common/errors/ErrorCode.h"

#include <unistd.h>

#include <algorithm>
#include <string_view>

namespace orbelantine {

namespace {

constexpr LocalRadioApi::Error kCrNoSuchDevInst = 13;

/// A machine without a radio that takes its name from the registry, and without a registry.
class LinuxLocalRadioApi final : public LocalRadioApi {
  public:
    Error setupDiEnumDeviceInfo(Handle, std::uint32_t, DevInfoData&) override {
        return win32::kErrorNoMoreItems;
    }

    Error cmGetDeviceId(std::uint32_t, wchar_t*, std::uint32_t) override {
        return kCrNoSuchDevInst;
    }

    Error regOpenKeyEx(Handle, const std::wstring&, std::uint32_t, Handle&) override {
        return win32::kErrorFileNotFound;
    }

    Error regSetValueEx(Handle, const std::wstring&, std::uint32_t, const void*,
                        std::uint32_t) override {
        return win32::kErrorInvalidHandle;
    }

    void regCloseKey(Handle) override {}

    Error getComputerName(wchar_t* name, std::uint32_t& size) override {
        std::array<char, 256> host{};
        gethostname(host.data(), host.size() - 1);
        const std::string_view text(host.data());
        if (text.size() >= size)
            return win32::kErrorBufferOverflow;
        *std::ranges::copy(text, name).out = L'\0';
        size = static_cast<std::uint32_t>(text.size());
        return win32::kErrorSuccess;
    }

    Error bluetoothFindFirstRadio(Handle&, Handle&) override { return win32::kErrorNoMoreItems; }

    Error bluetoothGetRadioInfo(Handle, RadioInfo&) override { return win32::kErrorInvalidHandle; }

    void bluetoothFindRadioClose(Handle) override {}
};

} // namespace

LocalRadioApi& LocalRadioApi::system() {
    static LinuxLocalRadioApi api;
    return api;
}

} // namespace orbelantine
