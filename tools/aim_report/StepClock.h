#pragma once

#include "core/common/run/Clock.h"
#include "core/common/run/IDelayTimer.h"

#include <atomic>

namespace orbelantine::aim {

/// Time that passes only by pauses, which are over at once. Any thread may call.
class StepClock final : public IClock {
  public:
    [[nodiscard]] TimePoint now() const override { return TimePoint(Duration(mNow)); }

    void sleepFor(Duration pause) override { mNow += pause.count(); }

    /// A time that has passed already is no pause.
    void sleepUntil(TimePoint time) {
        if (const Duration pause = time - now(); pause > Duration::zero())
            sleepFor(pause);
    }

    /// Its time is real time: clicks and drags ask for no timer.
    [[nodiscard]] boost::shared_ptr<IDelayTimer> makeTimer(boost::asio::io_context& ioService,
                                                           TimePoint expiry) override {
        IClock& real = system();
        return real.makeTimer(ioService, laterBy(real.now(), expiry - now()));
    }

  private:
    std::atomic<Duration::rep> mNow{0};
};

} // namespace orbelantine::aim
