#pragma once

#include "core/common/run/Clock.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <functional>
#include <map>
#include <mutex>
#include <vector>

namespace boost::asio {
class execution_context;
}

namespace orbelantine::test {

/// Time that passes only when told to, or by a pause. Its timers that are due are in the queues of
/// their io_services, in order of expiry, when advance or sleepFor returns. Any thread may call.
class HandClock : public IClock {
  public:
    HandClock();
    ~HandClock() override;

    [[nodiscard]] TimePoint now() const override;
    void sleepFor(Duration pause) override;
    [[nodiscard]] boost::shared_ptr<IDelayTimer> makeTimer(boost::asio::io_context& ioService,
                                                           TimePoint expiry) override;

    void advance(Duration time);
    /// Runs at the end of each pause.
    void onPause(std::function<void()> hook);
    [[nodiscard]] std::vector<Duration> pauses() const;

  private:
    class Timer;
    struct Leaving;
    struct Wait;
    using Waits = std::multimap<TimePoint, Wait>;

    void add(TimePoint expiry, Wait wait);
    void wake(const Timer& timer);
    void drop(const boost::asio::execution_context& context);
    void wakeDue();

    mutable std::mutex mMutex;
    TimePoint mNow{};
    std::vector<Duration> mPauses;
    std::function<void()> mOnPause;
    Waits mWaits;
};

} // namespace orbelantine::test
