#include "tests/input/RelativeMouseFixture.h"

#include <boost/system/errc.hpp>
#include <gtest/gtest.h>

#include <thread>

namespace orbelantine {

namespace {

using namespace std::chrono_literals;
using test::FakePhone;
using test::Journal;
using test::RelativeMouse;

TEST(RelativeMouseLife, AServerThatCannotStartEndsTheSource) {
    RelativeMouse mouse;
    mouse.source->start(mouse.surface);
    (void)mouse.take();
    mouse.phone.started(error_code());
    EXPECT_EQ(mouse.state(), "RelativeMouseStateStart");
    const auto refused = make_error_code(boost::system::errc::connection_refused);
    mouse.phone.started(refused);
    EXPECT_EQ(mouse.state(), "RelativeMouseStateFini");
    EXPECT_EQ(mouse.inside([&] { return mouse.source->lastError(); }), refused);
    EXPECT_EQ(mouse.phone.stops, 1);
    mouse.source->mouseLButton(true, 1, 1, 0, true);
    EXPECT_EQ(mouse.take(), Journal{});
}

TEST(RelativeMouseLife, StopDisconnectsEveryoneFromTheContextAndSomeSignalsOfTheProvider) {
    RelativeMouse mouse;
    mouse.beReady();
    mouse.surface->onRotationChanged.connect([](int) {});
    const auto& provider = *mouse.phone.provider;
    mouse.source->stop();
    EXPECT_EQ(mouse.state(), "RelativeMouseStateFini");
    EXPECT_EQ(mouse.surface->slots(), 0U);
    EXPECT_EQ(mouse.surface.use_count(), 1);
    EXPECT_EQ(mouse.phone.provider.use_count(), 1);
    EXPECT_EQ(provider.onCursorMove.num_slots() + provider.onCursorViewPortChanged.num_slots(), 0U);
    EXPECT_EQ(provider.onLogicalDimensionsChanged.num_slots(), 1U);
    mouse.source->stop();
    mouse.source->start(mouse.surface);
    EXPECT_EQ(mouse.state(), "RelativeMouseStateStart");
    EXPECT_EQ(mouse.phone.stops, 1);
}

TEST(RelativeMouseLife, TheEndWaitsForTheProvidersAnswerFromAnotherThread) {
    RelativeMouse mouse;
    mouse.phone.stopAnswer = FakePhone::Keeps;
    mouse.beReady();
    mouse.source->stop();
    auto answer = mouse.phone.stopping.get_future().get();
    mouse.clock.advance(5s - 1ns);
    answer(error_code());
    EXPECT_EQ(mouse.state(), "RelativeMouseStateFini");
    answer(error_code());
}

TEST(RelativeMouseLife, TheEndWaitsFiveSecondsForAProviderThatNeverAnswers) {
    RelativeMouse mouse;
    mouse.phone.stopAnswer = FakePhone::Keeps;
    mouse.beReady();
    mouse.source->stop();
    const auto answer = mouse.phone.stopping.get_future().get();
    mouse.clock.advance(5s);
    EXPECT_EQ(mouse.state(), "RelativeMouseStateFini");
    mouse.source.reset();
    answer(error_code());
}

TEST(RelativeMouseLife, ADroppedAnswerEndsTheWaitAtOnce) {
    for (const char* hint : {"FakePhone", ""}) {
        RelativeMouse mouse(false, hint);
        mouse.phone.stopAnswer = FakePhone::Drops;
        mouse.beReady();
        mouse.source->stop();
        EXPECT_EQ(mouse.state(), "RelativeMouseStateFini") << '"' << hint << '"';
    }
}

TEST(RelativeMouseLife, ASourceThatGoesWithoutStopIsEndedAndOutlivedBySilentSlots) {
    RelativeMouse mouse;
    mouse.beReady();
    mouse.source->mouseWheel(true, 500, 400, 1);
    mouse.source.reset();
    EXPECT_EQ(mouse.phone.stops, 1);
    EXPECT_EQ(mouse.surface->slots(), 0U);
    const Journal before = mouse.journal;
    mouse.phone.provider->onLogicalDimensionsChanged(9, 9, 1, 0);
    mouse.phone.started(error_code());
    mouse.clock.advance(2s);
    EXPECT_EQ(mouse.journal, before);
}

TEST(RelativeMouseLife, ASourceMayGoDuringAPauseWithEventsQueued) {
    RelativeMouse mouse;
    std::promise<void> paused;
    std::promise<void> resume;
    mouse.source->start(mouse.surface);
    (void)mouse.take();
    bool first = true;
    mouse.clock.onPause([&] {
        if (std::exchange(first, false)) {
            paused.set_value();
            resume.get_future().wait();
        }
    });
    mouse.surface->onLogicalDimensionsChanged(500, 250, 1, 0);
    mouse.source->mouseLButton(true, 400, 200, 0, false);
    paused.get_future().wait();
    std::thread destroyer([&] { mouse.source.reset(); });
    resume.set_value();
    destroyer.join();
    EXPECT_EQ(mouse.phone.stops, 1);
    EXPECT_EQ(mouse.surface.use_count(), 1);
}

TEST(RelativeMouseLife, WithoutATargetNothingIsSent) {
    RelativeMouse mouse;
    mouse.source->registerTarget(nullptr);
    mouse.beReady();
    mouse.source->mouseLButton(true, 400, 200, 0, false);
    EXPECT_EQ(mouse.take(), (Journal{"pause 0", "lock"}));
    EXPECT_EQ(mouse.position(), " 200,100 held");
}

} // namespace

} // namespace orbelantine
