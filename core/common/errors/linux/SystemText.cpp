#include "core/common/errors/SystemText.h"

#include <cstring>

namespace orbelantine {

std::string systemErrorText(int code) {
    const char* text = strerrordesc_np(code);
    return text != nullptr ? text : std::string();
}

} // namespace orbelantine
