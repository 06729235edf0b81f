#include "core/common/crash/linux/Fault.h"

#include "core/common/crash/linux/LoadedModule.h"

#include <ucontext.h>
#include <unistd.h>

#include <array>
#include <cstring>

namespace orbelantine {

namespace {

// The names of the files of .NET's and Mono's run times begin so.
constexpr const char* kRunTimeFiles[] = {"libcoreclr", "libclrjit", "libclrgc", "libmono", "mono"};

// Faults so near to the stack's pointer are taken for its end.
constexpr std::uintptr_t kStackMargin = 0x10000;

bool programIsRunTime = false;

struct Code {
    int signal;
    int detail; // of siginfo_t, 0 for any other
    std::uint32_t code;
};

constexpr Code kCodes[] = {
    {SIGSEGV, 0, 0xc0000005},         {SIGBUS, BUS_ADRALN, 0x80000002},
    {SIGBUS, 0, 0xc0000006},          {SIGILL, ILL_PRVOPC, 0xc0000096},
    {SIGILL, 0, 0xc000001d},          {SIGFPE, FPE_INTDIV, 0xc0000094},
    {SIGFPE, FPE_INTOVF, 0xc0000095}, {SIGFPE, FPE_FLTDIV, 0xc000008e},
    {SIGFPE, FPE_FLTOVF, 0xc0000091}, {SIGFPE, FPE_FLTUND, 0xc0000093},
    {SIGFPE, FPE_FLTRES, 0xc000008f}, {SIGFPE, 0, 0xc0000090},
    {SIGABRT, 0, 0x40000015},
};

constexpr std::uint32_t kStackOverflow = 0xc00000fd;
constexpr std::uint32_t kNonContinuable = 1;

struct Place {
    std::uintptr_t counter;
    std::uintptr_t stack;
};

Place placeOf(const Fault& fault) {
    const auto& registers = static_cast<const ucontext_t*>(fault.context)->uc_mcontext.gregs;
    return {static_cast<std::uintptr_t>(registers[REG_RIP]),
            static_cast<std::uintptr_t>(registers[REG_RSP])};
}

std::uintptr_t accessed(const Fault& fault) {
    return reinterpret_cast<std::uintptr_t>(fault.info->si_addr);
}

bool isRunTimeName(const char* path) {
    const char* const slash = std::strrchr(path, '/');
    const char* const name = slash != nullptr ? slash + 1 : path;
    for (const char* const start : kRunTimeFiles)
        if (std::strncmp(name, start, std::strlen(start)) == 0)
            return true;
    return false;
}

bool isOutsideOurs(std::uintptr_t counter) {
    const LoadedModule module = loadedModuleAt(counter);
    if (!module)
        return true;
    return *module.path == '\0' ? programIsRunTime : isRunTimeName(module.path);
}

bool isStackOverflow(const Fault& fault) {
    if (fault.signal != SIGSEGV || fault.info->si_code <= 0)
        return false;
    const std::uintptr_t stack = placeOf(fault).stack;
    return accessed(fault) + kStackMargin >= stack && accessed(fault) <= stack + kStackMargin;
}

std::uint32_t codeOf(const Fault& fault) {
    if (isStackOverflow(fault))
        return kStackOverflow;
    for (const Code& row : kCodes)
        if (row.signal == fault.signal && (row.detail == 0 || row.detail == fault.info->si_code))
            return row.code;
    return 0;
}

} // namespace

void prepareFaults() {
    std::array<char, 4096> path{};
    const ssize_t size = readlink("/proc/self/exe", path.data(), path.size() - 1);
    programIsRunTime = size > 0 && isRunTimeName(path.data());
}

bool mayBeManaged(const Fault& fault) {
    if (fault.signal == SIGABRT)
        return false;
    const Place place = placeOf(fault);
    const bool called = (fault.signal == SIGSEGV || fault.signal == SIGBUS) &&
                        !loadedModuleAt(place.counter) && accessed(fault) == place.counter;
    return isOutsideOurs(called ? *reinterpret_cast<const std::uintptr_t*>(place.stack)
                                : place.counter);
}

ExceptionRecord recordOf(const Fault& fault) {
    return {codeOf(fault), fault.signal == SIGABRT ? kNonContinuable : 0,
            reinterpret_cast<const void*>(placeOf(fault).counter)};
}

} // namespace orbelantine
