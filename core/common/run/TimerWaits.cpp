#include "core/common/run/TimerWaits.h"

#include <boost/asio/error.hpp>
#include <boost/asio/post.hpp>
#include <boost/smart_ptr/enable_shared_from_this.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>
#include <boost/system/error_code.hpp>

#include <algorithm>
#include <utility>

namespace orbelantine {

using boost::system::error_code;

class TimerWaits::Timer final : public IDelayTimer, public boost::enable_shared_from_this<Timer> {
  public:
    Timer(boost::asio::io_context& ioService, IClock::TimePoint expiry)
        : mIoService(ioService)
        , mExpiry(expiry) {}

    void asyncWait(Handler handler) override {
        of(mIoService)
            .add(mExpiry, {shared_from_this(), std::move(handler),
                           boost::asio::make_work_guard(mIoService)});
    }

    void cancel() override {
        mCancelled = true;
        of(mIoService).end(*this);
    }

    [[nodiscard]] error_code result() const {
        return mCancelled ? make_error_code(boost::asio::error::operation_aborted) : error_code();
    }

  private:
    boost::asio::io_context& mIoService;
    const IClock::TimePoint mExpiry;
    bool mCancelled = false;
};

boost::asio::execution_context::id TimerWaits::id;

TimerWaits& TimerWaits::of(boost::asio::io_context& ioService) {
    return boost::asio::use_service<TimerWaits>(ioService);
}

boost::shared_ptr<IDelayTimer> TimerWaits::makeTimer(boost::asio::io_context& ioService,
                                                     IClock::TimePoint expiry) {
    return boost::make_shared<Timer>(ioService, expiry);
}

void TimerWaits::endDue() {
    const IClock::TimePoint now = IClock::system().now();
    while (!mWaits.empty() && earliest() <= now)
        queue(std::move(mWaits.extract(mWaits.begin()).mapped()));
}

void TimerWaits::add(IClock::TimePoint expiry, Wait wait) {
    mWaits.emplace(expiry, std::move(wait));
}

void TimerWaits::end(const Timer& timer) {
    const auto found = std::ranges::find_if(
        mWaits, [&](const auto& wait) { return wait.second.timer.get() == &timer; });
    if (found != mWaits.end())
        queue(std::move(mWaits.extract(found).mapped()));
}

void TimerWaits::queue(Wait wait) {
    const auto executor = wait.work.get_executor();
    boost::asio::post(executor,
                      [this, timer = std::move(wait.timer), call = std::move(wait.handler)] {
                          // Its timer may be cancelled while the end of a wait is queued.
                          if (!mAbandoned)
                              call(timer->result());
                      });
}

void TimerWaits::abandon() {
    mAbandoned = true;
    // A handler may hold what ends another wait.
    while (!mWaits.empty())
        mWaits.extract(mWaits.begin());
}

} // namespace orbelantine
