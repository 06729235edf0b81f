#pragma once

#include "bluetooth/DriverApi.h"
#include "core/common/errors/ErrorCode.h"

#include <cstdint>

namespace orbelantine {

/// What a backend tells of the private drivers. `function` is the qualified name of the operation
/// that asks, for the log. Each blocks until the driver answers.
/// @{

/// -1 when it can't be read.
[[nodiscard]] std::int32_t hidDriverVersion(DriverApi& api, const char* function);
[[nodiscard]] error_code verifyHidDriver(DriverApi& api, const char* function);
[[nodiscard]] error_code verifyHandsfreeDriver(DriverApi& api, const char* function);

/// @}

} // namespace orbelantine
