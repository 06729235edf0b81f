#pragma once

#include "core/common/crash/ExceptionPointers.h"
#include "core/common/crash/linux/CrashFrames.h"

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <cstdint>

namespace orbelantine {

/// Where a thread that crashes leaves what is to be recorded, and waits until it is. Its operations
/// take no lock and no memory but the recorder's: they are also for signal handlers.
class CrashPost {
  public:
    struct Entry {
        const char* source = nullptr;
        bool hasRecord = false;
        ExceptionRecord record;
        CrashFrames frames;
    };

    enum class Claim {
        Taken,   // entry() is the caller's to fill
        Again,   // the calling thread crashes while it is about to be recorded
        TimedOut // another thread's crash took too long
    };

    /// For one who crashes: waits for another thread's crash to be recorded, which usually ends the
    /// process.
    [[nodiscard]] Claim claim(std::chrono::milliseconds bound);

    [[nodiscard]] Entry& entry() { return mEntry; }

    /// Hands the entry to the recorder and waits for the verdict; 1 if it doesn't come in time.
    [[nodiscard]] int submit(std::chrono::milliseconds bound);
    /// The entry is free for the next crash.
    void release();

    /// For the recorder: waits for an entry; false once closed.
    [[nodiscard]] bool await();
    void answer(int verdict);
    /// Ends await, once no crash is being recorded; false if that takes longer than `bound`.
    bool close(std::chrono::milliseconds bound);
    /// Ready again after close.
    void open();

  private:
    enum State : std::uint32_t { kFree, kClaimed, kPosted, kAnswered, kClosed };

    [[nodiscard]] bool turn(State from, State to);
    void set(State state);

    std::atomic<std::uint32_t> mState = kFree;
    std::atomic<pid_t> mClaimant = 0;
    std::atomic<int> mVerdict = 0;
    Entry mEntry;
};

} // namespace orbelantine
