#pragma once

#include "core/common/run/Clock.h"

#include <functional>

namespace orbelantine {

/// Calls its handler once after a time in which nobody restarted it. Belongs to the thread that
/// runs its io_service, and is released before that is destroyed.
class IdleTimer {
  public:
    IdleTimer(IClock& clock, boost::asio::io_context& ioService, std::function<void()> onIdle);

    /// Whatever was awaited, the handler is called `timeout` from now.
    void restart(std::chrono::milliseconds timeout);
    void cancel();

  private:
    void wait();
    void wake();

    IClock& mClock;
    boost::asio::io_context& mIoService;
    std::function<void()> mOnIdle;
    IClock::TimePoint mDeadline{};
    // Of the wait in progress: not after the deadline.
    IClock::TimePoint mWakesAt{};
    boost::shared_ptr<IDelayTimer> mWait;
};

} // namespace orbelantine
