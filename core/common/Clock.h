#pragma once

#include <chrono>

namespace orbelantine {

/// Monotonic time and pauses, so that whoever waits can be stepped by hand.
class IClock {
  public:
    using Duration = std::chrono::nanoseconds;
    using TimePoint = std::chrono::time_point<std::chrono::steady_clock, Duration>;

    virtual ~IClock() = default;
    [[nodiscard]] virtual TimePoint now() const = 0;
    /// Blocks the calling thread.
    virtual void sleepFor(Duration pause) = 0;

    /// The process's real clock; lives until the process ends.
    static IClock& system();
};

} // namespace orbelantine
