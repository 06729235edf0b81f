#pragma once

#include <span>

namespace orbelantine {

struct OSALTableRow {
    const char* profile;
    const char* interfaceName;
    const char* implementation;
};

/// Which implementation serves an interface under each profile. Some rows name implementations of
/// programs that link other parts than this library.
[[nodiscard]] std::span<const OSALTableRow> osalTable();

} // namespace orbelantine
