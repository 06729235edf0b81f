#include "core/common/errors/ErrorAreas.h"

#include "core/common/errors/ErrorCategory.h"

namespace orbelantine {

#define ORB_ERROR_AREA(Area, first, ...)                                                           \
    template <>                                                                                    \
    struct ErrorAreaTable<Area> {                                                                  \
        static constexpr int kFirst = first;                                                       \
        static constexpr const char* kNames = #__VA_ARGS__;                                        \
    };                                                                                             \
    boost::system::error_code Area::getErrorCode(int value) {                                      \
        return {value, ErrorCategory<Area>::instance()};                                           \
    }
#include "core/common/errors/ErrorAreas.inc"
#undef ORB_ERROR_AREA

} // namespace orbelantine
