#pragma once

#include "core/common/errors/ErrorCode.h"

#include <string>

namespace orbelantine::bluez {

/// The Windows number for an error that D-Bus names, in the generic category.
[[nodiscard]] error_code errorOf(const std::string& name);

} // namespace orbelantine::bluez
