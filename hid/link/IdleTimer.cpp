#include "hid/link/IdleTimer.h"

#include "core/common/run/IDelayTimer.h"

#include <boost/system/error_code.hpp>

#include <utility>

namespace orbelantine {

IdleTimer::IdleTimer(IClock& clock, boost::asio::io_context& ioService,
                     std::function<void()> onIdle)
    : mClock(clock)
    , mIoService(ioService)
    , mOnIdle(std::move(onIdle)) {}

// Every report restarts it, so that mostly moves the deadline: the wait in progress goes on to it.
void IdleTimer::restart(std::chrono::milliseconds timeout) {
    mDeadline = laterBy(mClock.now(), timeout);
    if (!mWait || mDeadline < mWakesAt)
        wait();
}

void IdleTimer::cancel() {
    if (mWait)
        mWait->cancel();
    mWait.reset();
}

void IdleTimer::wait() {
    cancel();
    mWakesAt = mDeadline;
    mWait = mClock.makeTimer(mIoService, mWakesAt);
    mWait->asyncWait([this](const boost::system::error_code& ec) {
        if (!ec)
            wake();
    });
}

void IdleTimer::wake() {
    mWait.reset();
    if (mClock.now() < mDeadline)
        wait();
    else
        mOnIdle();
}

} // namespace orbelantine
