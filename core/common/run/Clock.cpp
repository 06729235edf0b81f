#include "core/common/run/Clock.h"

#include "core/common/run/IDelayTimer.h"

#include <boost/asio/error.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/smart_ptr/enable_shared_from_this.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

#include <thread>
#include <utility>

namespace orbelantine {

namespace {

using boost::system::error_code;

class SteadyTimer final : public IDelayTimer, public boost::enable_shared_from_this<SteadyTimer> {
  public:
    SteadyTimer(boost::asio::io_context& ioService, IClock::TimePoint expiry)
        : mTimer(ioService, expiry) {}

    void asyncWait(Handler handler) override {
        mTimer.async_wait([self = shared_from_this(), call = std::move(handler)](error_code ec) {
            // A timer that has expired no longer ends its queued wait.
            call(self->mCancelled ? make_error_code(boost::asio::error::operation_aborted) : ec);
        });
    }

    void cancel() override {
        mCancelled = true;
        mTimer.cancel();
    }

  private:
    boost::asio::steady_timer mTimer;
    bool mCancelled = false;
};

class SystemClock final : public IClock {
  public:
    [[nodiscard]] TimePoint now() const override { return std::chrono::steady_clock::now(); }

    void sleepFor(Duration pause) override { std::this_thread::sleep_for(pause); }

    [[nodiscard]] boost::shared_ptr<IDelayTimer> makeTimer(boost::asio::io_context& ioService,
                                                           TimePoint expiry) override {
        return boost::make_shared<SteadyTimer>(ioService, expiry);
    }
};

} // namespace

IClock& IClock::system() {
    static SystemClock clock;
    return clock;
}

} // namespace orbelantine
