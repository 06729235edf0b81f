#include "core/common/errors/SystemText.h"

#include "core/common/errors/ErrorCode.h"

namespace orbelantine {

namespace {

constexpr struct {
    std::uint32_t number;
    const char* text;
} kTexts[] = {

#define ORB_WIN32_ERROR(name, number, text) {win32::name, text},
#include "core/common/errors/Win32Errors.inc"
#undef ORB_WIN32_ERROR
};

} // namespace

std::string systemErrorText(int code) {
    for (const auto& [number, text] : kTexts)
        if (number == static_cast<std::uint32_t>(code))
            return text;
    return {};
}

} // namespace orbelantine
