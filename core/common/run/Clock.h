#pragma once

#include <boost/smart_ptr/shared_ptr.hpp>

#include <chrono>

namespace boost::asio {
class io_context;
} // namespace boost::asio

namespace orbelantine {

class IDelayTimer;

/// Monotonic time, pauses and timers, so that whoever waits can be stepped by hand.
class IClock {
  public:
    using Duration = std::chrono::nanoseconds;
    using TimePoint = std::chrono::time_point<std::chrono::steady_clock, Duration>;

    virtual ~IClock() = default;
    [[nodiscard]] virtual TimePoint now() const = 0;
    /// Blocks the calling thread.
    virtual void sleepFor(Duration pause) = 0;
    /// A timer that ends on `ioService`, which is run by runQueue, when this clock reaches
    /// `expiry`, or at once if it has. The clock outlives the io_service.
    [[nodiscard]] virtual boost::shared_ptr<IDelayTimer>
    makeTimer(boost::asio::io_context& ioService, TimePoint expiry) = 0;

    /// The process's real clock; lives until the process ends.
    static IClock& system();
};

/// `now` (not before the clock's epoch) and `delay` later, held at the clock's limits.
template <class Unit>
[[nodiscard]] constexpr IClock::TimePoint laterBy(IClock::TimePoint now, Unit delay) {
    using Limits = IClock::TimePoint;
    constexpr Unit kLongest = std::chrono::duration_cast<Unit>(IClock::Duration::max());
    if (delay < -kLongest)
        return Limits::min();
    return delay > kLongest || Limits::max() - now < delay ? Limits::max() : now + delay;
}

} // namespace orbelantine
