#include "tests/input/RelativeMouseFixture.h"
#include "tests/support/CapturedLog.h"

#include <boost/system/errc.hpp>
#include <gtest/gtest.h>

#include <thread>

namespace orbelantine {

namespace {

using namespace std::chrono_literals;
using test::FakeProvider;
using test::NewRelativeMouse;
using test::ReadyRelativeMouse;
using test::RelativeMouse;

TEST_F(NewRelativeMouse, AServerThatCannotStartEndsTheSource) {
    source->start(surface);
    (void)take();
    provider->started(error_code());
    EXPECT_EQ(state(), "RelativeMouseStateStart");
    const auto refused = make_error_code(boost::system::errc::connection_refused);
    provider->started(refused);
    EXPECT_EQ(state(), "RelativeMouseStateFini");
    EXPECT_EQ(inside([&] { return source->lastError(); }), refused);
    EXPECT_EQ(provider->stops, 1);
    EXPECT_EQ(play("return 1 1"), "");
}

TEST_F(NewRelativeMouse, StopDisconnectsEveryoneFromTheContextAndSomeSignalsOfTheProvider) {
    const auto holders = provider.use_count();
    beReady();
    surface->onRotationChanged.connect([](int) {});
    source->stop();
    EXPECT_EQ(state(), "RelativeMouseStateFini");
    EXPECT_EQ(slotsOfSurface(), 0U);
    EXPECT_EQ(surface.use_count(), 1);
    EXPECT_EQ(provider.use_count(), holders);
    EXPECT_EQ(provider->onCursorMove.num_slots(), 0U);
    EXPECT_EQ(provider->onCursorViewPortChanged.num_slots(), 0U);
    EXPECT_EQ(provider->onLogicalDimensionsChanged.num_slots(), 1U);
    source->stop();
    source->start(surface);
    EXPECT_EQ(state(), "RelativeMouseStateStart");
    EXPECT_EQ(provider->stops, 1);
}

TEST(RelativeMouseLife, TheEndWaitsForTheProvidersAnswerForFiveSecondsUnlessItIsDropped) {
    for (const auto& [answer, warnings] : {std::pair{FakeProvider::Drops, 0U},
                                           {FakeProvider::AtOnce, 0U},
                                           {FakeProvider::Late, 0U},
                                           {FakeProvider::Never, 1U}}) {
        RelativeMouse mouse;
        test::CapturedLog log(kLogWarning);
        mouse.provider->stopAnswer = answer;
        mouse.beReady();
        mouse.source->stop();
        IRemoteMouseInfoProvider::Callback kept;
        if (answer >= FakeProvider::Late) {
            kept = mouse.provider->stopping.get_future().get();
            mouse.clock.advance(5s - 1ns);
        }
        if (answer == FakeProvider::Late)
            kept(error_code());
        if (answer == FakeProvider::Never)
            mouse.clock.advance(1ns);
        EXPECT_EQ(mouse.state(), "RelativeMouseStateFini");
        EXPECT_EQ(log.told().size(), warnings);
        mouse.source.reset();
        if (kept)
            kept(error_code());
    }
}

TEST_F(ReadyRelativeMouse, ASourceThatGoesWithoutStopIsEndedAndOutlivedBySilentSlots) {
    source->mouseWheel(true, 500, 400, 1);
    source.reset();
    EXPECT_EQ(provider->stops, 1);
    EXPECT_EQ(slotsOfSurface(), 0U);
    const std::string before = journal;
    provider->onLogicalDimensionsChanged(9, 9, 1, 0);
    provider->started(error_code());
    clock.advance(2s);
    EXPECT_EQ(journal, before);
}

TEST_F(NewRelativeMouse, ASourceMayGoDuringAPauseWithEventsQueued) {
    std::promise<void> paused;
    std::promise<void> resume;
    source->start(surface);
    (void)take();
    bool first = true;
    clock.onPause([&] {
        if (std::exchange(first, false)) {
            paused.set_value();
            resume.get_future().wait();
        }
    });
    surface->onLogicalDimensionsChanged(500, 250, 1, 0);
    source->mouseLButton(true, 400, 200, 0, false);
    paused.get_future().wait();
    std::thread destroyer([&] { source.reset(); });
    resume.set_value();
    destroyer.join();
    EXPECT_EQ(provider->stops, 1);
    EXPECT_EQ(surface.use_count(), 1);
}

TEST_F(NewRelativeMouse, WithoutATargetNothingIsSent) {
    source->registerTarget(nullptr);
    beReady();
    EXPECT_EQ(play("press 400 200, at"), "pause 0, lockSystemMouse, at 200,100 held");
}

} // namespace

} // namespace orbelantine
