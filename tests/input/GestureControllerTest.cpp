#include "input/gesture/GestureController.h"

#include "input/gesture/GestureStates.h"
#include "tests/input/FakeWindowApi.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <memory>

namespace orbelantine {
namespace {

using namespace std::chrono_literals;
using test::Names;
using test::spaced;

struct GestureControllerTest : testing::Test {
    test::HandClock clock;
    test::Journal journal;
    std::unique_ptr<GestureController> controller = std::make_unique<GestureController>(clock);

    GestureControllerTest() {
        clock.advance(1s);
        controller->onInjection.connect([this](std::int32_t dx, std::int32_t dy, bool last) {
            journal.note(spaced(dx, dy, last ? "last" : "more"));
        });
    }

    void button(bool down, IClock::Duration later = 0ms) {
        settle();
        clock.advance(later);
        controller->mouseLButton(down);
    }

    void delta(std::int32_t dx, std::int32_t dy, IClock::Duration later = 100ms) {
        settle();
        clock.advance(later);
        controller->mouseDelta(dx, dy);
    }

    /// Until all that was posted, and what a timer has posted, has run.
    void settle() {
        controller->postAndWait([](const auto&) {});
    }

    Names injectedAfter(IClock::Duration time) {
        settle();
        clock.advance(time);
        settle();
        return journal.take();
    }

    std::string state() {
        return controller->postAndWait([](const auto& current) { return current->getName(); });
    }

    /// The last event, the number of events, the movement and the pace.
    std::string burst() {
        return controller->postAndWait([this](const auto&) {
            const GestureBurst& b = controller->burst();
            return spaced(b.lastEventNs != 0, b.eventCount, b.lastDx, b.lastDy, b.intervalMs);
        });
    }

    void playBurst() {
        button(true);
        delta(1, 2);
        delta(3, -4);
        delta(5, 6);
        button(false, 100ms);
    }
};

TEST_F(GestureControllerTest, ABurstGoesOnFiveTimesByItsEcho) {
    playBurst();
    EXPECT_EQ(state(), "GestureStateInjection");
    EXPECT_EQ(burst(), "1 5 5 6 100");
    EXPECT_EQ(injectedAfter(99ms), Names{});
    for (int echo = 1; echo <= 5; ++echo) {
        EXPECT_EQ(injectedAfter(echo == 1 ? 1ms : 100ms),
                  Names{echo < 5 ? "5 6 more" : "5 6 last"});
        // Without an echo nothing follows.
        EXPECT_EQ(injectedAfter(1s), Names{});
        delta(-9, -9, 0ms);
    }
    EXPECT_EQ(injectedAfter(1s), Names{});
    EXPECT_EQ(state(), "GestureStateInjection");
}

TEST_F(GestureControllerTest, FourEventsAreNoBurst) {
    button(true);
    delta(1, 2);
    delta(3, 4);
    button(false, 100ms);
    EXPECT_EQ(state(), "GestureStateIdle");
    EXPECT_EQ(burst(), "0 0 0 0 0");
    EXPECT_EQ(injectedAfter(1s), Names{});
}

TEST_F(GestureControllerTest, AGapOf501MillisecondsEndsABurst) {
    button(true);
    delta(1, 2, 500ms + 999us);
    EXPECT_EQ(state(), "GestureStateDetection");
    delta(3, 4, 501ms);
    EXPECT_EQ(state(), "GestureStateIdle");
    // The counters stay: the next burst is sooner reached, and goes on with the old movement.
    EXPECT_EQ(burst(), "0 2 1 2 500");
    button(true);
    delta(-1, 0, 10ms);
    button(false, 10ms);
    EXPECT_EQ(state(), "GestureStateInjection");
    EXPECT_EQ(injectedAfter(10ms), Names{"1 2 more"});
}

TEST_F(GestureControllerTest, ALateReleaseForgetsEverything) {
    button(true);
    delta(1, 2);
    delta(1, 2);
    delta(1, 2);
    button(false, 501ms);
    EXPECT_EQ(state(), "GestureStateIdle");
    EXPECT_EQ(burst(), "0 0 0 0 0");
}

TEST_F(GestureControllerTest, AMovementThatGoesNeitherRightNorDownIsCountedAndNotKept) {
    button(true);
    delta(7, 8);
    delta(-4, 0);
    EXPECT_EQ(burst(), "1 3 7 8 100");
    delta(-4, 1);
    EXPECT_EQ(burst(), "1 4 -4 1 100");
}

TEST_F(GestureControllerTest, ASecondPressBeginsTheCountAnewWithoutALastEvent) {
    button(true);
    delta(7, 8);
    button(true);
    EXPECT_EQ(state(), "GestureStateDetection");
    EXPECT_EQ(burst(), "0 0 0 0 0");
    delta(1, 1, 2s);
    EXPECT_EQ(burst().substr(0, 7), "1 1 1 1");
}

TEST_F(GestureControllerTest, APressInTimeLeavesAnInjectionForANewBurst) {
    playBurst();
    button(true, 50ms);
    EXPECT_EQ(state(), "GestureStateDetection");
    EXPECT_EQ(burst(), "0 0 0 0 0");
    EXPECT_EQ(injectedAfter(1s), Names{});
}

TEST_F(GestureControllerTest, ALatePressLeavesItOnlyAtTheSecondTime) {
    playBurst();
    button(false, 50ms);
    button(true, 451ms);
    EXPECT_EQ(state(), "GestureStateInjection");
    EXPECT_EQ(burst(), "0 5 5 6 100");
    button(true);
    EXPECT_EQ(state(), "GestureStateDetection");
}

TEST_F(GestureControllerTest, WhatAStateDoesNotTakeIsLogged) {
    test::CapturedLog log(kLogDebug);
    delta(1, 1);
    EXPECT_EQ(state(), "GestureStateIdle");
    EXPECT_EQ(log.missing({"orbelantine::GestureState::onNotProcessed: Event "
                           "orbelantine::GestureState::mouseDelta not processed in "
                           "GestureStateIdle"}),
              Names{});
}

TEST_F(GestureControllerTest, ItMayEndWithEventsAndATimerPending) {
    playBurst();
    controller->mouseDelta(1, 1);
    settle();
    controller->mouseDelta(1, 1);
    controller.reset();
    clock.advance(10s);
    EXPECT_EQ(journal.take(), Names{});
}

} // namespace
} // namespace orbelantine
