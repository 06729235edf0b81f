#pragma once

#include <string>

namespace orbelantine {

/// What a Windows error number says. On Windows the system's own text as it stands, trailing line
/// end included; elsewhere a sentence for each number of `win32`. Empty for an unknown number.
[[nodiscard]] std::string systemErrorText(int code);

} // namespace orbelantine
