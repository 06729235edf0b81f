#include "core/common/config/SettingsApi.h"

#include <windows.h>

namespace orbelantine {

namespace {

class RegistrySettings final : public SettingsApi {
  public:
    Error getInteger(const char* name, std::uint32_t& value) override {
        DWORD stored = 0;
        DWORD size = sizeof(stored);
        const LSTATUS error = RegGetValueA(HKEY_LOCAL_MACHINE, "Software\\Kessa\\Brevon", name,
                                           RRF_RT_REG_DWORD, nullptr, &stored, &size);
        if (error == ERROR_SUCCESS)
            value = stored;
        return static_cast<Error>(error);
    }
};

} // namespace

SettingsApi& SettingsApi::system() {
    static RegistrySettings api;
    return api;
}

} // namespace orbelantine
