#pragma once

#include "core/common/log/Log.h"

#include <cstdarg>
#include <string>

namespace orbelantine {

/// A printf text, cut at 2,047 characters like one of the log.
[[nodiscard]] std::string crashText(const char* format, ...) ORB_PRINTF(1, 2);
[[nodiscard]] std::string crashText(const char* format, std::va_list arguments) ORB_PRINTF(1, 0);
/// The same, for the file.
[[nodiscard]] std::wstring wideCrashText(const char* format, ...) ORB_PRINTF(1, 2);

} // namespace orbelantine
