#pragma once

#include <cstdint>

/// The system's events under the names of Windows' calls and with their numbers: on Windows those
/// calls, elsewhere the same for the threads of one process. Any thread may call.
namespace orbelantine::kernel_event {

using Handle = void*;

inline constexpr std::uint32_t kWaitTimeout = 258;
inline constexpr std::uint32_t kWaitFailed = 0xFFFFFFFF;

/// What a wait came to: the index of the handle that ended it (0 for all), kWaitTimeout or
/// kWaitFailed; `error` is the system's error number after a failure.
struct WaitResult {
    std::uint32_t value;
    std::uint32_t error;
};

/// An event without a name; null where the system has none left.
[[nodiscard]] Handle create(bool manualReset, bool signalled);
void close(Handle event);
void set(Handle event);
void reset(Handle event);

[[nodiscard]] WaitResult waitForOne(Handle event, std::uint32_t milliseconds);
/// 1 to 64 events. Waiting for all leaves every event as it is until all are signalled at once;
/// of several signalled ones the first ends a wait for any.
[[nodiscard]] WaitResult waitForMany(const Handle* events, std::uint32_t count, bool all,
                                     std::uint32_t milliseconds);

} // namespace orbelantine::kernel_event
