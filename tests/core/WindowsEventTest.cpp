#include "core/common/run/WindowsEvent.h"

#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

namespace orbelantine::test {
namespace {

using Events = std::vector<WindowsEvent>;

constexpr std::uint32_t kLong = 60000;
constexpr std::uint32_t kShort = 5;

WindowsEvent automatic(bool signalled = false) {
    return WindowsEvent(false, signalled);
}

WindowsEvent manual(bool signalled = false) {
    return WindowsEvent(true, signalled);
}

/// Waits on a thread of its own.
template <class Wait>
auto onThread(Wait wait) {
    return std::async(std::launch::async, wait);
}

TEST(WindowsEvent, ManualEventStaysSignalledUntilResetAndAnAutomaticOneEndsOneWait) {
    WindowsEvent event = manual();
    EXPECT_FALSE(event.wait(kShort));
    event.set();
    EXPECT_TRUE(event.wait(0));
    EXPECT_TRUE(event.wait(WindowsEvent::kInfinite));
    event.reset();
    EXPECT_FALSE(event.wait(0));
    WindowsEvent once = automatic(true);
    EXPECT_TRUE(once.wait(0));
    EXPECT_FALSE(once.wait(0));
    once.set();
    once.set();
    EXPECT_TRUE(once.wait(kLong));
    EXPECT_FALSE(once.wait(kShort));
}

TEST(WindowsEvent, LastCopyClosesTheHandle) {
    kernel_event::Handle handle = nullptr;
    {
        WindowsEvent replaced = manual();
        {
            WindowsEvent first = manual(true);
            const WindowsEvent second(first);
            handle = first.handle();
            replaced = second;
        }
        EXPECT_EQ(replaced.handle(), handle);
        EXPECT_TRUE(replaced.wait(0));
    }
    EXPECT_EQ(kernel_event::waitForOne(handle, 0).value, kernel_event::kWaitFailed);
}

TEST(WindowsEvent, WaitForAllTakesNoneUntilAllAreSignalledAndForAnyTheFirstAloneAlsoInRecords) {
    const Events events{automatic(true), automatic(), manual(true)};
    EXPECT_FALSE(WindowsEvent::waitAll(events, kShort));
    WindowsEvent(events[1]).set();
    EXPECT_TRUE(WindowsEvent::waitAll(events, 0));
    EXPECT_EQ(WindowsEvent::waitAny(events, 0), 2U);
    const Events first{manual(), automatic(true), automatic(true)};
    EXPECT_EQ(WindowsEvent::waitAny(first, 0), 1U);
    EXPECT_EQ(WindowsEvent::waitAny(first, 0), 2U);
    EXPECT_EQ(WindowsEvent::waitAny(first, kShort), 0xFFFFFFFF);

    struct Record {
        int number;
        WindowsEvent event;
    };

    const std::vector<Record> records{{1, manual()}, {2, manual(true)}};
    EXPECT_EQ(WindowsEvent::waitAny(records, &Record::event, 0), 1U);
    EXPECT_FALSE(WindowsEvent::waitAll(records, &Record::event, 0));
    WindowsEvent(records[0].event).set();
    EXPECT_TRUE(WindowsEvent::waitAll(records, &Record::event, 0));
}

TEST(WindowsEvent, GroupWaitThatEndsWithoutAnEventIsLogged) {
    CapturedLog log(kLogTrace, "orbelantine::WindowsEvent::");
    const Events none{manual()};
    EXPECT_FALSE(WindowsEvent::waitAll(none, 0));
    EXPECT_EQ(WindowsEvent::waitAny(none, 0), WindowsEvent::kNone);
    EXPECT_EQ(WindowsEvent::waitAny(Events(65, manual(true)), 0), WindowsEvent::kNone);
    EXPECT_FALSE(WindowsEvent::waitAll(Events(), 0));
    EXPECT_EQ(log.told(), (Texts{"error waitAll() wait failed. Error: 258",
                                 "error waitAny() wait failed. Error: 258",
                                 "error waitAny() wait failed. Error: 87",
                                 "error waitAll() wait failed. Error: 87"}));
}

TEST(WindowsEvent, AutomaticEventLetsWaitingThreadsThroughOneByOneAndItsLastOneEndsAWaitForAll) {
    WindowsEvent event = automatic();
    WindowsEvent passed = automatic();
    std::atomic<int> count = 0;
    const auto pass = [&, event]() mutable {
        const bool ended = event.wait(WindowsEvent::kInfinite);
        ++count;
        passed.set();
        return ended;
    };
    auto first = onThread(pass), second = onThread(pass);
    for (int expected = 1; expected <= 2; ++expected) {
        event.set();
        EXPECT_TRUE(passed.wait(kLong));
        EXPECT_EQ(count, expected);
    }
    EXPECT_TRUE(first.get() && second.get());
    Events events{automatic(), automatic()};
    auto waiting = onThread([events] { return WindowsEvent::waitAll(events, kLong); });
    events[1].set();
    events[0].set();
    EXPECT_TRUE(waiting.get());
    EXPECT_EQ(WindowsEvent::waitAny(events, 0), WindowsEvent::kNone);
}

TEST(WindowsEvent, TwoThreadsHandOverToEachOther) {
    constexpr int kRounds = 1000;
    WindowsEvent ping = automatic();
    WindowsEvent pong = automatic();
    auto other = onThread([ping, pong]() mutable {
        int rounds = 0;
        for (; rounds < kRounds && WindowsEvent::waitAny({manual(), ping}, kLong) == 1; ++rounds)
            pong.set();
        return rounds;
    });
    for (int i = 0; i < kRounds; ++i) {
        ping.set();
        ASSERT_TRUE(pong.wait(kLong));
    }
    EXPECT_EQ(other.get(), kRounds);
}

} // namespace
} // namespace orbelantine::test
