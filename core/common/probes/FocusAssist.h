#pragma once

#include <cstdint>

namespace orbelantine {

/// The system calls behind getFocusAssistProfile.
class FocusAssistApi {
  public:
    using Procedure = void (*)();
    using Module = void*;

    /// NtQueryWnfStateData: `size` is the buffer's on entry; a negative result is a failure.
    using QueryWnfStateData = std::int32_t (*)(const std::uint64_t* stateName, const void* type,
                                               const void* scope, std::uint32_t* changeStamp,
                                               void* buffer, std::uint32_t* size);

    virtual ~FocusAssistApi() = default;
    /// GetModuleHandleW; null for a module that isn't loaded.
    [[nodiscard]] virtual Module getModuleHandle(const wchar_t* name) = 0;
    /// GetProcAddress; null for a name that the module doesn't export.
    [[nodiscard]] virtual Procedure getProcAddress(Module module, const char* name) = 0;

    /// The process's real system; lives until the process ends.
    static FocusAssistApi& system();
};

/// Whether the user has notifications silenced: 0 off, 1 priority only, 2 alarms only; -1 where
/// the system can't tell, -2 for a profile that isn't known. Any thread may call.
[[nodiscard]] int getFocusAssistProfile();
[[nodiscard]] int getFocusAssistProfile(FocusAssistApi& api);

} // namespace orbelantine
