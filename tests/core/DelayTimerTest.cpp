#include "core/common/run/IDelayTimer.h"
#include "core/common/run/RunQueue.h"
#include "tests/support/HandClock.h"

#include <boost/asio/error.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace orbelantine::test {
namespace {

using namespace std::chrono_literals;

/// What holds for the timers of every clock.
class DelayTimer : public ::testing::TestWithParam<const char*> {
  protected:
    DelayTimer() { mIoService.emplace(); }

    [[nodiscard]] IClock& clock() {
        return std::string(GetParam()) == "System" ? IClock::system() : mHandClock;
    }

    boost::shared_ptr<IDelayTimer> makeTimer(IClock::Duration fromStart) {
        return clock().makeTimer(*mIoService, mStart + fromStart);
    }

    IDelayTimer::Handler note(const std::string& name) {
        return [this, name](const boost::system::error_code& ec) {
            mEnded.push_back(name +
                             (ec == boost::asio::error::operation_aborted ? " aborted" : ""));
        };
    }

    HandClock mHandClock;
    const IClock::TimePoint mStart = clock().now();
    std::optional<boost::asio::io_context> mIoService;
    std::vector<std::string> mEnded;
};

TEST_P(DelayTimer, DueTimersEndFromTheQueueInOrderOfExpiry) {
    const auto later = makeTimer(-1ms);
    const auto earlier = makeTimer(-2ms);
    boost::asio::post(*mIoService, [&] {
        earlier->asyncWait(note("earlier"));
        later->asyncWait(note("later"));
        EXPECT_TRUE(mEnded.empty());
    });
    runQueue(*mIoService);
    EXPECT_EQ(mEnded, (std::vector<std::string>{"earlier", "later"}));
}

TEST_P(DelayTimer, CancelEndsTheWaitAndTakesBackAQueuedSuccess) {
    const auto first = makeTimer(-2ms);
    const auto due = makeTimer(-1ms);
    const auto late = makeTimer(1h);
    first->asyncWait([&](const boost::system::error_code&) {
        first->cancel();
        due->cancel();
        late->cancel();
    });
    due->asyncWait(note("due"));
    late->asyncWait(note("late"));
    runQueue(*mIoService);
    EXPECT_EQ(mEnded, (std::vector<std::string>{"due aborted", "late aborted"}));
}

TEST_P(DelayTimer, WaitsGoWithTheirIoServiceUncalled) {
    const auto held = boost::make_shared<int>(0);
    for (const IClock::Duration fromNow : {IClock::Duration(0), IClock::Duration(1h)}) {
        const auto timer = makeTimer(fromNow);
        timer->asyncWait([held, timer](const boost::system::error_code&) { FAIL() << "called"; });
    }
    EXPECT_EQ(held.use_count(), 3);
    mIoService.reset();
    EXPECT_EQ(held.use_count(), 1);
}

INSTANTIATE_TEST_SUITE_P(Clocks, DelayTimer, ::testing::Values("System", "Hand"),
                         [](const auto& clock) { return std::string(clock.param); });

TEST(Clock, LaterByStaysWithinItsLimits) {
    using Point = IClock::TimePoint;
    constexpr Point kNow(5ns);
    EXPECT_EQ(laterBy(kNow, 20s), Point(20'000'000'005ns));
    EXPECT_EQ(laterBy(kNow, 1000ms), Point(1'000'000'005ns));
    EXPECT_EQ(laterBy(kNow, std::chrono::seconds::max()), Point::max());
    EXPECT_EQ(laterBy(kNow, 9'223'372'036s), Point(9'223'372'036'000'000'005ns));
    EXPECT_EQ(laterBy(Point(1s), 9'223'372'036s), Point::max());
    EXPECT_EQ(laterBy(kNow, std::chrono::milliseconds::min()), Point::min());
}

} // namespace
} // namespace orbelantine::test
