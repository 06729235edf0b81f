#pragma once

#include "bluetooth/DriverApi.h"

namespace orbelantine {

/// The Windows number nearest to an errno; kErrorGenFailure for one without a counterpart.
[[nodiscard]] DriverApi::Error windowsError(int errnoValue);

} // namespace orbelantine
