#pragma once

#include <chrono>

namespace orbelantine {

class CExceptionHandler;

/// How long a crash is being recorded; after that the process ends with what has been written.
inline constexpr std::chrono::seconds kCrashBound{5};

/// The process's fatal conditions, led to the object that is set. A system mechanism: on Windows
/// the unhandled exception filter and the run time's handlers, on Linux signals and the run time's
/// handlers. One object's traps may be put over another's, and come off in any order.
/// @{

/// Every condition is recorded by `handler` from now on. False, with nothing done, if there can be
/// no thread for it.
[[nodiscard]] bool installCrashTraps(CExceptionHandler& handler);
/// What was there before installCrashTraps is back; no condition is led to any object.
void removeCrashTraps();

/// @}

/// The object that is set, or null. Also read while the process crashes.
[[nodiscard]] CExceptionHandler* crashHandler();

} // namespace orbelantine
