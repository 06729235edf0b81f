#pragma once

#include "core/common/errors/ErrorCode.h"

namespace orbelantine {

/// One marker per functional area. `Code` holds the area's run of values in order; `getErrorCode`
/// gives a value the area's category, on any thread.
#define ORB_ERROR_AREA(Area, first, head, ...)                                                     \
    struct Area {                                                                                  \
        enum Code : int { Success = 0, head = first, __VA_ARGS__ };                                \
        [[nodiscard]] static boost::system::error_code getErrorCode(int value);                    \
    };
// clang-format off
#ifdef SWIG
%include "core/common/errors/ErrorAreas.inc"
#else
#include "core/common/errors/ErrorAreas.inc"
#endif
// clang-format on
#undef ORB_ERROR_AREA

} // namespace orbelantine
