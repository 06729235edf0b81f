#include "tests/support/HandClock.h"

#include "core/common/run/IDelayTimer.h"

#include <boost/asio/error.hpp>
#include <boost/asio/execution_context.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/smart_ptr/enable_shared_from_this.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

#include <algorithm>
#include <list>
#include <utility>

namespace orbelantine::test {

struct HandClock::Wait {
    boost::shared_ptr<Timer> timer;
    IDelayTimer::Handler handler;
    // Keeps the io_service running, as a real timer does.
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work;
};

class HandClock::Timer final : public IDelayTimer, public boost::enable_shared_from_this<Timer> {
  public:
    Timer(HandClock& clock, boost::asio::io_context& ioService, TimePoint expiry)
        : mClock(clock)
        , mIoService(ioService)
        , mExpiry(expiry) {}

    void asyncWait(Handler handler) override {
        mClock.add(mExpiry, {shared_from_this(), std::move(handler),
                             boost::asio::make_work_guard(mIoService)});
    }

    void cancel() override {
        mCancelled = true;
        mClock.wake(*this);
    }

    [[nodiscard]] boost::system::error_code result() const {
        if (mCancelled)
            return boost::asio::error::operation_aborted;
        return {};
    }

  private:
    HandClock& mClock;
    boost::asio::io_context& mIoService;
    const TimePoint mExpiry;
    bool mCancelled = false;
};

/// Drops an io_service's waits with it, as the service of real timers does.
struct HandClock::Leaving final : boost::asio::execution_context::service {
    static inline boost::asio::execution_context::id id;
    HandClock* clock = nullptr;

    explicit Leaving(boost::asio::execution_context& context)
        : service(context) {}

    void shutdown() override {
        if (clock != nullptr)
            clock->drop(context());
    }
};

namespace {

void finish(auto& wait) {
    const auto executor = wait.work.get_executor();
    boost::asio::post(executor, [timer = std::move(wait.timer), call = std::move(wait.handler)] {
        call(timer->result());
    });
}

} // namespace

HandClock::HandClock() = default;
HandClock::~HandClock() = default;

IClock::TimePoint HandClock::now() const {
    const std::lock_guard lock(mMutex);
    return mNow;
}

void HandClock::sleepFor(Duration pause) {
    std::function<void()> hook;
    {
        const std::lock_guard lock(mMutex);
        mPauses.push_back(pause);
        hook = mOnPause;
    }
    advance(pause);
    if (hook)
        hook();
}

boost::shared_ptr<IDelayTimer> HandClock::makeTimer(boost::asio::io_context& ioService,
                                                    TimePoint expiry) {
    boost::asio::use_service<Leaving>(ioService).clock = this;
    return boost::make_shared<Timer>(*this, ioService, expiry);
}

void HandClock::advance(Duration time) {
    const std::lock_guard lock(mMutex);
    mNow = laterBy(mNow, time);
    wakeDue();
}

void HandClock::onPause(std::function<void()> hook) {
    const std::lock_guard lock(mMutex);
    mOnPause = std::move(hook);
}

std::vector<IClock::Duration> HandClock::pauses() const {
    const std::lock_guard lock(mMutex);
    return mPauses;
}

void HandClock::add(TimePoint expiry, Wait wait) {
    const std::lock_guard lock(mMutex);
    mWaits.emplace(expiry, std::move(wait));
    wakeDue();
}

void HandClock::wake(const Timer& timer) {
    const std::lock_guard lock(mMutex);
    const auto found = std::find_if(mWaits.begin(), mWaits.end(), [&](const auto& entry) {
        return entry.second.timer.get() == &timer;
    });
    if (found != mWaits.end())
        finish(mWaits.extract(found).mapped());
}

void HandClock::drop(const boost::asio::execution_context& context) {
    std::list<Waits::node_type> dropped;
    const std::lock_guard lock(mMutex);
    for (auto it = mWaits.begin(); it != mWaits.end();)
        if (const auto here = it++; &here->second.work.get_executor().context() == &context)
            dropped.push_back(mWaits.extract(here));
}

void HandClock::wakeDue() {
    while (!mWaits.empty() && mWaits.begin()->first <= mNow)
        finish(mWaits.extract(mWaits.begin()).mapped());
}

} // namespace orbelantine::test
