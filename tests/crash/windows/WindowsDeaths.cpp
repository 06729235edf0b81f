#include "tests/crash/Deaths.h"

#include <windows.h>

namespace orbelantine::test {

namespace {

/// As the run time does where a checked function is called wrongly.
void tellInvalidParameter() {
    const auto handler = _get_invalid_parameter_handler();
    handler(L"size > 0", L"copyAll", L"copy.c", 7, 0);
    std::exit(3);
}

void raiseManaged() {
    RaiseException(0xe0434352, 0, 0, nullptr);
}

constexpr Death kWindowsDeaths[] = {
    {"invalid_parameter", tellInvalidParameter},
    {"managed", raiseManaged},
};

} // namespace

std::span<const Death> platformDeaths() {
    return kWindowsDeaths;
}

void useTemporaryFolder(const char* folder) {
    (void)SetEnvironmentVariableA("TMP", folder);
}

} // namespace orbelantine::test
