#include "tests/crash/Deaths.h"

#include <windows.h>

#include <cstdlib>
#include <string>

namespace orbelantine::test {

namespace {

/// As the run time does where a checked function is called wrongly.
void tellInvalidParameter() {
    const auto handler = _get_invalid_parameter_handler();
    handler(L"size > 0", L"copyAll", L"copy.c", 7, 0);
    std::exit(3);
}

template <class Function>
Function exported(const char* name) {
    const HMODULE library = LoadLibraryW(L"orbelantine.dll");
    const std::string whole = std::string("CSharp_OrbelantinefSwigfcommon_") + name + "___";
    void (*const found)() = reinterpret_cast<void (*)()>(GetProcAddress(library, whole.c_str()));
    return reinterpret_cast<Function>(found);
}

/// As a host does, with the library that is shipped.
void dieInLibrary() {
    void* const handler = exported<void* (*)()>("new_CExceptionHandler__SWIG_2")();
    if (exported<unsigned (*)(void*)>("CExceptionHandler_SetHandler")(handler) != 0)
        exported<void (*)(void*)>("CExceptionHandler_Crash")(handler);
}

void raiseManaged() {
    RaiseException(0xe0434352, 0, 0, nullptr);
}

constexpr Death kWindowsDeaths[] = {
    {"library", dieInLibrary},
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
