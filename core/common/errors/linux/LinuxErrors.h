#pragma once

#include "core/common/errors/ErrorCode.h"

#include <cstdint>

namespace orbelantine {

/// The Windows number nearest to an errno; kErrorGenFailure for one without a counterpart.
[[nodiscard]] std::uint32_t windowsError(int errnoValue);

} // namespace orbelantine
