#include "core/common/config/PipelineNames.h"

namespace orbelantine {

std::string pipelineProfile(int kind) {
    static constexpr const char* kNames[] = {"hid", "generic"};
    const bool known = kind >= 1 && kind <= 2;
    return known ? kInputPipelinePrefix + std::string(kNames[kind - 1]) : std::string();
}

} // namespace orbelantine
