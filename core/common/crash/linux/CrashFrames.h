#pragma once

#include <cstddef>
#include <cstdint>

namespace orbelantine {

/// Where a thread stood, innermost first. Filled within a signal handler, so it has its room.
struct CrashFrames {
    static constexpr std::size_t kMost = 256;

    std::uintptr_t counters[kMost];
    std::size_t count = 0;

    void add(std::uintptr_t counter) {
        if (count < kMost)
            counters[count++] = counter;
    }
};

/// The calling thread's frames, from this function's caller on. For signal handlers too.
void captureFrames(CrashFrames& frames);

/// Those of the thread that a signal has interrupted, on whose alternate stack the caller runs:
/// `context` is the handler's third argument. A call to an address where there is no code counts as
/// made from its caller.
void captureInterruptedFrames(CrashFrames& frames, void* context);

/// The frames of the crash that the calling thread is recording, or null.
[[nodiscard]] const CrashFrames* recordedFrames();

} // namespace orbelantine
