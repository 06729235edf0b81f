#include "core/common/run/Clock.h"

#include "core/common/run/TimerWaits.h"

#include <thread>

namespace orbelantine {

namespace {

class SystemClock final : public IClock {
  public:
    [[nodiscard]] TimePoint now() const override { return std::chrono::steady_clock::now(); }

    void sleepFor(Duration pause) override { std::this_thread::sleep_for(pause); }

    [[nodiscard]] boost::shared_ptr<IDelayTimer> makeTimer(boost::asio::io_context& ioService,
                                                           TimePoint expiry) override {
        return TimerWaits::makeTimer(ioService, expiry);
    }
};

} // namespace

IClock& IClock::system() {
    static SystemClock clock;
    return clock;
}

} // namespace orbelantine
