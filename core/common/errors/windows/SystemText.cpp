#include "core/common/errors/SystemText.h"

#include <windows.h>

namespace orbelantine {

std::string systemErrorText(int code) {
    constexpr DWORD kUserDefaultLanguage = 0x400;
    char* buffer = nullptr;
    const DWORD length = FormatMessageA(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, static_cast<DWORD>(code), kUserDefaultLanguage, reinterpret_cast<char*>(&buffer),
        0, nullptr);
    if (length == 0)
        return {};
    const std::string text(buffer, length);
    LocalFree(buffer);
    return text;
}

} // namespace orbelantine
