#pragma once

#include "core/common/crash/ExceptionPointers.h"

namespace orbelantine {

class CExceptionHandler;

/// One crash to record.
struct CrashRecording {
    CExceptionHandler* handler;
    const char* source;
    const ExceptionPointers* pointers;
};

/// A thread that stands by while a crash is being recorded: what takes longer than kCrashBound is
/// ended with the process, and what has no room left on its own stack is recorded there.
/// @{

/// False if there can be no thread.
[[nodiscard]] bool startCrashWatch();
void stopCrashWatch();

/// Records one crash at a time, and comes back with the verdict; 1 where another thread's crash
/// doesn't come to its end, or where the recording itself fails. `elsewhere`: whether it is done on
/// the watching thread. Takes no memory of its own.
[[nodiscard]] int recordWatched(const CrashRecording& crash, bool elsewhere);

/// @}

} // namespace orbelantine
