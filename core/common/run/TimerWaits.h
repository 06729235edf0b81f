#pragma once

#include "core/common/run/Clock.h"
#include "core/common/run/IDelayTimer.h"

#include <boost/asio/execution_context.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <map>

namespace orbelantine {

/// The waits of the system clock's timers on one io_service, a service of that. They are waited for
/// by the thread that runs the io_service (runQueue), to which all of this belongs: with a timer of
/// asio's own, every event would pass through a reactor from then on.
class TimerWaits final : public boost::asio::execution_context::service {
  public:
    class Timer;

    static boost::asio::execution_context::id id;

    explicit TimerWaits(boost::asio::execution_context& context)
        : service(context) {}

    [[nodiscard]] static TimerWaits& of(boost::asio::io_context& ioService);

    /// A timer that ends when the system clock reaches `expiry`.
    [[nodiscard]] static boost::shared_ptr<IDelayTimer>
    makeTimer(boost::asio::io_context& ioService, IClock::TimePoint expiry);

    [[nodiscard]] bool empty() const { return mWaits.empty(); }

    [[nodiscard]] IClock::TimePoint earliest() const { return mWaits.begin()->first; }

    /// Queues the handlers of those whose time has come.
    void endDue();

    /// Drops all waits for good, also those that have ended and whose handlers are queued.
    void abandon();

  private:
    struct Wait {
        boost::shared_ptr<Timer> timer;
        IDelayTimer::Handler handler;
        // Keeps the io_service running.
        boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work;
    };

    using Waits = std::multimap<IClock::TimePoint, Wait>;

    void add(IClock::TimePoint expiry, Wait wait);
    void end(const Timer& timer);
    void queue(Wait wait);

    // The waits go with their io_service.
    void shutdown() override { abandon(); }

    Waits mWaits;
    bool mAbandoned = false;
};

} // namespace orbelantine
