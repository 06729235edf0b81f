#include "core/common/crash/CrashText.h"

#include <boost/nowide/convert.hpp>

#include <cstdio>

namespace orbelantine {

std::string crashText(const char* format, std::va_list arguments) {
    char text[2048] = "";
    (void)std::vsnprintf(text, sizeof text, format, arguments);
    return text;
}

std::string crashText(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::string text = crashText(format, arguments);
    va_end(arguments);
    return text;
}

std::wstring wideCrashText(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::wstring text = boost::nowide::widen(crashText(format, arguments));
    va_end(arguments);
    return text;
}

} // namespace orbelantine
