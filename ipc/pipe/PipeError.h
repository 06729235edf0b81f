#pragma once

#include "core/common/errors/ErrorCode.h"

#include <cstdint>

namespace orbelantine {

/// A Windows number in the system category, on every platform.
[[nodiscard]] inline error_code pipeError(std::uint32_t error) {
    return {static_cast<int>(error), boost::system::system_category()};
}

} // namespace orbelantine
