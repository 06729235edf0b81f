#include "input/relative/RelativeMouseSource.h"

#include "tests/input/RelativeMouseFixture.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace orbelantine {

namespace {

using test::NewRelativeMouse;
using test::ReadyRelativeMouse;
using test::RelativeMouse;

const std::string kParked = "move 32767,32767, pause 100";
const std::string kGone = "move -299,-149, ";
const std::string kPressed = "pause 0, leftDown 0,0, lockSystemMouse";
const std::string kReleased = "unlockSystemMouse(500, 400), leftUp 0,0, " + kParked;

TEST(RelativeMouseSource, ComesFromTheFactoryAndIsNotAbsolute) {
    auto& factory = OSALFactory::instance();
    const auto made = osalCreate<IMouseSource>(factory, "IMouseSource", KVStore(), "");
    ASSERT_NE(boost::dynamic_pointer_cast<RelativeMouseSource>(made), nullptr);
    EXPECT_FALSE(made->isAbsolute());
}

TEST_F(NewRelativeMouse, DimensionsMakeItReadyAndParkTwice) {
    source->start(surface);
    EXPECT_EQ(state(), "RelativeMouseStateStart");
    source->rmiLogicalDimensions(0, 250, 1, 0);
    EXPECT_EQ(take(), "");
    provider->onLogicalDimensionsChanged(500, 250, 1, 8);
    EXPECT_EQ(play("at"), kParked + ", " + kParked + ", at 491,241");
    EXPECT_EQ(state(), "RelativeMouseStateReady");
}

TEST(RelativeMouseSource, EventsBecomeDeltasButtonsAndPauses) {
    const std::string clicked = kGone + kPressed;
    const std::pair<const char*, std::string> scenes[] = {
        {"press 400 200, at, release, at",
         clicked + ", at 200,100 held, " + kReleased + ", at 499,249"},
        // A phone that is back is parked first; the release keeps to the place from before that.
        {"return 400 200", kParked + ", " + clicked},
        {"press 400 200, release 1", clicked + ", " + kParked + ", " + kGone + kReleased},
        // Touches are on the screen, and only one that holds the button moves the cursor.
        {"move 500 400, hover 1 1", ""},
        {"down 500 400, move 520 420, move 520 420, up 500 400",
         clicked + ", move 10,10, move -10,-10, " + kReleased},
        {"raw 6 0", ""},
        {"press 400 200, raw 6 0, raw 0 -1, raw 0 0, at",
         clicked + ", move 10,0, move 0,-1, at 210,99 held"},
        {"raw 999 999, right 1, right 0, unfocus, at",
         "move -1,0, move 1,0, rightDown 0,0, rightUp 0,0, at 499,249"},
        {"press 400 200, unfocus, unfocus", clicked + ", " + kReleased},
        // A run of the wheel moves once, and parks a second after its last event.
        {"wheel 3 500 400, wait 999, wheel -1 900 600, wait 999, at, wait 1, wait 5000",
         kGone + "pause 0, wheelUp 0,3, wheelDown 0,-1, at 200,100, " + kParked},
        {"wheel 1 500 400, wait 1000, wheel 1 500 400",
         kGone + "pause 0, wheelUp 0,1, " + kParked + ", " + kGone + "pause 0, wheelUp 0,1"},
        {"wheel 1 500 400, press 400 200, wait 2000", kGone + "pause 0, wheelUp 0,1, " + kPressed},
        {"wheel 1 500 400, stop, wait 2000", kGone + "pause 0, wheelUp 0,1"},
        // Reports of the phone's cursor correct the model, unless they may be echoes.
        {"press 400 200, viewport 1000 1000, wait 200 999999, report 40 40, at, wait 0 1, "
         "report -1 40, at, report 40 40, at",
         clicked + ", at 200,100 held, at 200,100 held, at 20,10 held"},
        {"rotate 1, press 400 200", kParked + ", " + clicked},
        {"rotate 2, press 400 200, raw 6 0",
         "move 32767,-32767, pause 100, move -149,299, " + kPressed + ", move 0,-10"},
        {"rotate 3, press 400 200", "move -32767,-32767, pause 100, move 299,149, " + kPressed},
        {"rotate 4, press 400 200", "move -32767,32767, pause 100, move 149,-299, " + kPressed},
    };
    for (const auto& [script, journal] : scenes) {
        RelativeMouse mouse;
        mouse.beReady();
        EXPECT_EQ(mouse.play(script), journal) << script;
    }
}

TEST(RelativeMouseSource, AnApplePhoneIsPausedForAndRawMovesOnAScaledScreenAreRoots) {
    RelativeMouse mouse(true);
    mouse.beReady(1596, 798, 2);
    EXPECT_EQ(mouse.play("press 990 490, at, raw -30 0, at"),
              "move -9,-9, pause 100, leftDown 0,0, lockSystemMouse, at 990,490 held, move -18,0, "
              "at 960,490 held");
}

TEST(RelativeMouseSource, DragSpeedIsReadAtEachStart) {
    for (const auto& [error, moved] : {std::pair{0U, "20"}, {2U, "10"}, {13U, "10"}}) {
        RelativeMouse mouse;
        mouse.settings.error = error;
        mouse.settings.dragSpeed = 20000;
        mouse.beReady();
        EXPECT_EQ(mouse.play("press 400 200, raw 6 0"),
                  kGone + kPressed + ", move " + moved + ",0");
    }
}

TEST(RelativeMouseSource, TheModelTakesWhatThePhoneMakesOfADeltaUnlessItIsTurned) {
    for (const auto& [script, sent] :
         {std::pair{"press 400 200, at", "move -149,-74, " + kPressed + ", at 52,27 held"},
          {"rotate 3, press 400 200, at",
           "move -32767,-32767, pause 100, move 149,74, " + kPressed + ", at 350,175 held"}}) {
        RelativeMouse mouse;
        mouse.reverser->acceleration = 3;
        mouse.reverser->reversal = 2;
        mouse.beReady();
        EXPECT_EQ(mouse.play(script), sent);
        EXPECT_EQ(mouse.reverser->lastMoveNs, mouse.clock.now().time_since_epoch().count());
    }
}

TEST_F(NewRelativeMouse, OnAScaledScreenALongMoveRepeatsTheButtonAndADragGoesOnUntilItsEnd) {
    beReady(3192, 1596, 2);
    EXPECT_EQ(play("at, press 700 499, at"), "at 1999,999, move -90,0, move -53,0, " + kPressed +
                                                 ", " + kPressed + ", at 1400,998 held");
    EXPECT_EQ(play("move 810 699, move 300 449, at"),
              "move 17,0, move -81,-39, move -81,-40, move -64,-31, at 400,498 held");
    EXPECT_EQ(play("unfocus"), "unlockSystemMouse(300, 449), leftUp 0,0, " + kParked);
}

TEST_F(NewRelativeMouse, AScreenBeyondTheReachOfAReportIsRefused) {
    const std::tuple<int, int, int> beyond[] = {
        {50'000'000, 1, 0}, {32768, 1, 0}, {1, -32768, 0}, {1, 1, -30'000'000}};
    beReady(32767, 32767, 1.001, -32767);
    EXPECT_EQ(position(), " 73786,73786");
    test::CapturedLog log(kLogError);
    for (const auto& [width, height, inset] : beyond) {
        source->rmiLogicalDimensions(width, height, 2, inset);
        EXPECT_EQ(take(), "");
        EXPECT_EQ(log.told().size(), 1U) << width << ' ' << height << ' ' << inset;
    }
    (void)play("press 0 0");
    EXPECT_EQ(position(), " 0,0 held");
}

TEST_F(ReadyRelativeMouse, WithoutDimensionsTheSystemMouseStaysFree) {
    source->rmiLogicalDimensions(0, 0, 1, 0);
    EXPECT_EQ(play("press 400 200, release"),
              "move -499,-249, pause 0, leftDown 0,0, leftUp 0,0, " + kParked);
}

TEST_F(NewRelativeMouse, ANewSourceBeginsWithTheLastDimensionsOfAny) {
    beReady(640, 480);
    make();
    source->start(surface);
    inside([&] { source->doMouseMoveHide(); });
    EXPECT_EQ(position(), " 639,479");
    inside([&] {
        source->updateLogicalDimensions(320, 240);
        source->doMouseMoveHide();
    });
    EXPECT_EQ(position(), " 319,239");
}

TEST_F(NewRelativeMouse, LinesAreLoggedToTheLetter) {
    settings.error = 13;
    test::CapturedLog log(kLogDebug, "orbelantine::RelativeMouse");
    source->start(surface);
    source->killFocus();
    source->rmiLogicalDimensions(1596, 798, 2, 4);
    source->rmiMousePosition(1, 1);
    (void)play("press 0 0");
    EXPECT_EQ(
        log.missing({
            " Source::start() mouse speed=10",
            " Source::readDragFactor() DragSpeed is not an integer or can't be read, error 13",
            " State::onNotProcessed() Event orbelantine::RelativeMouseState::killFocus not "
            "processed in RelativeMouseStateStart",
            " Source::rmiLogicalDimensions() new dimensions 1596x798, scale=2.000000, inset=4, "
            "logical 1000x500",
            " Source::doSendMouseDeltaAfterRotation() move dx=32767, dy=32767",
            " Source::doConvertRmiToDevicePosition() no RMI viewport info available",
            " StateReady::doClick() touch=0, down=1, x=0, y=0, reconnect=0",
        }),
        test::Texts());
}

} // namespace

} // namespace orbelantine
