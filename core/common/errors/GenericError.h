#pragma once

#include "core/common/errors/ErrorCode.h"

namespace orbelantine {

/// The numbers of the generic category that cross to the host, the same on every platform.
namespace generic {
#define ORB_GENERIC_ERROR(name, number, text) inline constexpr int name = number;
#include "core/common/errors/GenericErrors.inc"
#undef ORB_GENERIC_ERROR
} // namespace generic

/// A code of the generic category by one of `generic`'s numbers, or by that of a platform's call.
/// It equals boost's own of that number, and says what this product means by it.
[[nodiscard]] error_code genericError(int number);

} // namespace orbelantine
