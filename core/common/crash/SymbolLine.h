#pragma once

#include "core/common/crash/CrashStackApi.h"

#include <string>

namespace orbelantine {

/// One line of what is known of an address: module, symbol, offset and source line, at most 1,023
/// characters.
[[nodiscard]] std::wstring symbolLine(CrashStackApi& api, CrashStackApi::Address address);

/// 16 digits, as addresses are written in a record.
[[nodiscard]] std::wstring addressText(CrashStackApi::Address address);

} // namespace orbelantine
