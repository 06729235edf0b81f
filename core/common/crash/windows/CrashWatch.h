#pragma once

#include <functional>

namespace orbelantine {

/// A thread that stands by while a crash is being recorded: what takes longer than kCrashBound is
/// ended with the process, and what has no room left on its own stack is recorded there.
/// @{

/// False if there can be no thread.
[[nodiscard]] bool startCrashWatch();
void stopCrashWatch();

/// Calls `record` for the one crash at a time, and comes back with its verdict; 1 where another
/// thread's crash doesn't come to its end, or where the recording itself crashes. `elsewhere`:
/// whether it runs on the watching thread.
[[nodiscard]] int recordWatched(const std::function<int()>& record, bool elsewhere);

/// @}

} // namespace orbelantine
