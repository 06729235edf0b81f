#pragma once

#include "core/common/crash/ExceptionPointers.h"

#include <csignal>

namespace orbelantine {

/// What a signal handler was given.
struct Fault {
    int signal = 0;
    const siginfo_t* info = nullptr;
    void* context = nullptr;
};

/// Notes what may not be asked for in a signal handler.
void prepareFaults();

/// Whether a managed run time may be about to make an exception of it: it came up in code that
/// belongs to no module, which such a run time has compiled, or in one of the run time's own. A
/// call to nowhere counts as its caller's.
[[nodiscard]] bool mayBeManaged(const Fault& fault);

/// With the codes of Windows.
[[nodiscard]] ExceptionRecord recordOf(const Fault& fault);

} // namespace orbelantine
