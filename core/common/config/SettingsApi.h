#pragma once

#include <cstdint>

namespace orbelantine {

/// The product's settings on this computer. Any thread may call.
class SettingsApi {
  public:
    using Error = std::uint32_t;

    virtual ~SettingsApi() = default;

    /// The 32-bit integer under `name`. The result is the system's error number in the Windows
    /// numbering: 0 for success, the only one that sets `value`, and 2 if there is no such setting.
    [[nodiscard]] virtual Error getInteger(const char* name, std::uint32_t& value) = 0;

    /// The process's real settings; lives until the process ends.
    static SettingsApi& system();
};

} // namespace orbelantine
