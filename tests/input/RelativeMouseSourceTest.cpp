#include "input/relative/RelativeMouseSource.h"

#include "tests/input/RelativeMouseFixture.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orbelantine {

namespace {

using namespace std::chrono_literals;
using test::Journal;
using test::NewRelativeMouse;
using test::ReadyRelativeMouse;
using test::RelativeMouse;

const Journal kParked = {"move 32767,32767", "pause 100"};
const Journal kPressed = {"pause 0", "leftDown 0,0", "lockSystemMouse"};
const Journal kReleased = {"unlockSystemMouse(500, 400)", "leftUp 0,0", "move 32767,32767",
                           "pause 100"};

Journal operator+(Journal first, const Journal& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

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
    EXPECT_EQ(take(), Journal{});
    provider->onLogicalDimensionsChanged(500, 250, 1, 8);
    EXPECT_EQ(take(), kParked + kParked);
    EXPECT_EQ(state(), "RelativeMouseStateReady");
    EXPECT_EQ(position(), " 491,241");
}

TEST(RelativeMouseSource, AClickMovesThenPressesAndParksAfterItsRelease) {
    RelativeMouse mouse(true);
    mouse.beReady();
    mouse.press();
    EXPECT_EQ(mouse.take(),
              (Journal{"move -299,-149", "pause 100", "leftDown 0,0", "lockSystemMouse"}));
    EXPECT_EQ(mouse.position(), " 200,100 held");
    mouse.release();
    EXPECT_EQ(mouse.take(), kReleased);
    EXPECT_EQ(mouse.position(), " 499,249");
}

TEST_F(ReadyRelativeMouse, AReconnectParksBeforeTheMove) {
    source->mouseLButton(true, 400, 200, 0, true);
    EXPECT_EQ(take(), kParked + Journal{"move -299,-149"} + kPressed);
    // The release keeps to the place from before it.
    source->mouseLButton(false, 0, 0, 0, true);
    EXPECT_EQ(take(), kParked + Journal{"move -299,-149"} + kReleased);
}

TEST_F(ReadyRelativeMouse, TouchesAreOnTheScreenAndDragWhileHeld) {
    source->touchMove(500, 400, 3);
    source->mouseMove(1, 1, 0);
    EXPECT_EQ(take(), Journal{});
    source->touch(true, 500, 400, 3, false);
    EXPECT_EQ(take(), Journal{"move -299,-149"} + kPressed);
    source->touchMove(520, 420, 3);
    source->touchMove(520, 420, 3);
    source->touch(false, 500, 400, 3, false);
    EXPECT_EQ(take(), (Journal{"move 10,10", "move -10,-10"} + kReleased));
}

TEST_F(ReadyRelativeMouse, RawMovesDragByFactorOnlyWhileHeld) {
    source->rawMouseMove(6, 0);
    EXPECT_EQ(take(), Journal{});
    press();
    (void)take();
    source->rawMouseMove(6, 0);
    source->rawMouseMove(0, -1);
    source->rawMouseMove(0, 0);
    EXPECT_EQ(take(), (Journal{"move 10,0", "move 0,-1"}));
    EXPECT_EQ(position(), " 210,99 held");
    source->rotationChanged(2);
    press();
    (void)take();
    source->rawMouseMove(6, 0);
    EXPECT_EQ(take(), Journal{"move 0,-10"});
}

TEST(RelativeMouseSource, RawMovesOnAScaledScreenSendRootsAndCountInFull) {
    RelativeMouse mouse(true);
    mouse.beReady(1596, 798, 2);
    mouse.press(900, 450);
    (void)mouse.take();
    EXPECT_EQ(mouse.position(), " 900,450 held");
    mouse.source->rawMouseMove(-30, 0);
    EXPECT_EQ(mouse.take(), Journal{"move -18,0"});
    EXPECT_EQ(mouse.position(), " 870,450 held");
}

TEST(RelativeMouseSource, DragSpeedIsReadAtEachStart) {
    for (const auto& [error, moved] :
         {std::pair{0U, "move 20,0"}, {2U, "move 10,0"}, {13U, "move 10,0"}}) {
        RelativeMouse mouse;
        mouse.settings.error = error;
        mouse.settings.dragSpeed = 20000;
        mouse.beHeld();
        mouse.source->rawMouseMove(6, 0);
        EXPECT_EQ(mouse.take(), Journal{moved}) << error;
    }
}

TEST_F(ReadyRelativeMouse, TheJiggleTheRightButtonAndALostFocusLeaveTheCursorWhereItIs) {
    source->rawMouseMove(999, 999);
    source->mouseRButton(true, 1, 1, true);
    source->mouseRButton(false, 1, 1, false);
    source->killFocus();
    EXPECT_EQ(take(), (Journal{"move -1,0", "move 1,0", "rightDown 0,0", "rightUp 0,0"}));
    EXPECT_EQ(position(), " 499,249");
}

TEST(RelativeMouseSource, DeltasAreTurnedIntoThePhonesFrame) {
    const struct {
        std::int32_t rotation;
        const char* parking;
        const char* move;
    } kCases[] = {{1, "move 32767,32767", "move -299,-149"},
                  {2, "move 32767,-32767", "move -149,299"},
                  {3, "move -32767,-32767", "move 299,149"},
                  {4, "move -32767,32767", "move 149,-299"}};

    for (const auto& [rotation, parking, move] : kCases) {
        RelativeMouse mouse;
        mouse.beReady();
        mouse.surface->onRotationChanged(rotation);
        mouse.press();
        EXPECT_EQ(mouse.take(), (Journal{parking, "pause 100", move} + kPressed));
    }
}

TEST(RelativeMouseSource, TheModelTakesWhatThePhoneMakesOfADeltaUnlessItIsTurned) {
    for (const auto& [rotation, sent, position] :
         {std::tuple{1, "move -149,-74", " 52,27 held"}, {3, "move 149,74", " 350,175 held"}}) {
        RelativeMouse mouse;
        mouse.reverser->acceleration = 3;
        mouse.reverser->reversal = 2;
        mouse.beReady();
        mouse.source->rotationChanged(rotation);
        (void)mouse.take();
        mouse.press();
        EXPECT_EQ(mouse.take().front(), sent);
        EXPECT_EQ(mouse.position(), position);
        EXPECT_EQ(mouse.reverser->lastMoveNs, mouse.clock.now().time_since_epoch().count());
    }
}

TEST_F(NewRelativeMouse, OnAScaledScreenALongMoveRepeatsTheButtonAndADragGoesOnUntilItsEnd) {
    beReady(3192, 1596, 2);
    EXPECT_EQ(position(), " 1999,999");
    press(700, 499);
    EXPECT_EQ(take(), (Journal{"move -90,0", "move -53,0"} + kPressed + kPressed));
    EXPECT_EQ(position(), " 1400,998 held");
    source->touchMove(810, 699, 0);
    source->touchMove(300, 449, 0);
    EXPECT_EQ(take(), (Journal{"move 17,0", "move -81,-39", "move -81,-40", "move -64,-31"}));
    EXPECT_EQ(position(), " 400,498 held");
    source->killFocus();
    EXPECT_EQ(take(), (Journal{"unlockSystemMouse(300, 449)", "leftUp 0,0"} + kParked));
}

TEST_F(NewRelativeMouse, AScreenBeyondTheReachOfAReportIsRefused) {
    const struct {
        std::int32_t width, height, inset;
    } kBeyond[] = {{50'000'000, 1, 0}, {32768, 1, 0}, {1, -32768, 0}, {1, 1, -30'000'000}};

    beReady(32767, 32767, 1.001, -32767);
    EXPECT_EQ(position(), " 73786,73786");
    test::CapturedLog log(kLogError);
    for (const auto& [width, height, inset] : kBeyond) {
        source->rmiLogicalDimensions(width, height, 2, inset);
        EXPECT_EQ(take(), Journal{});
        EXPECT_EQ(log.take().size(), 1U) << width << ' ' << height << ' ' << inset;
    }
    press(0, 0);
    EXPECT_EQ(position(), " 0,0 held");
}

TEST_F(ReadyRelativeMouse, ARunOfWheelEventsMovesOnceAndParksASecondAfterTheLast) {
    source->mouseWheel(true, 500, 400, 3);
    EXPECT_EQ(take(), (Journal{"move -299,-149", "pause 0", "wheelUp 0,3"}));
    clock.advance(999ms);
    source->mouseWheel(false, 900, 600, -1);
    EXPECT_EQ(take(), Journal{"wheelDown 0,-1"});
    clock.advance(999ms);
    EXPECT_EQ(take(), Journal{});
    clock.advance(1ms);
    EXPECT_EQ(take(), kParked);
    clock.advance(5s);
    EXPECT_EQ(take(), Journal{});
    source->mouseWheel(true, 500, 400, 1);
    EXPECT_EQ(take(), (Journal{"move -299,-149", "pause 0", "wheelUp 0,1"}));
}

TEST_F(ReadyRelativeMouse, AClickOrTheEndTakesBackTheParkingAfterTheWheel) {
    for (const bool end : {false, true}) {
        source->mouseWheel(true, 500, 400, 1);
        end ? source->stop() : press();
        (void)take();
        clock.advance(2s);
        EXPECT_EQ(take(), Journal{});
    }
}

TEST_F(ReadyRelativeMouse, LosingTheFocusEndsADrag) {
    press();
    (void)take();
    source->killFocus();
    source->killFocus();
    EXPECT_EQ(take(), kReleased);
}

TEST_F(ReadyRelativeMouse, WithoutDimensionsTheSystemMouseStaysFree) {
    source->rmiLogicalDimensions(0, 0, 1, 0);
    press();
    release();
    EXPECT_EQ(take(),
              (Journal{"move -499,-249", "pause 0", "leftDown 0,0", "leftUp 0,0"}) + kParked);
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

TEST_F(ReadyRelativeMouse, ReportsOfThePhonesCursorCorrectTheModelUnlessTheyMayBeEchoes) {
    press();
    (void)take();
    provider->onCursorViewPortChanged(1000, 1000);
    clock.advance(201ms - 1ns);
    provider->onCursorMove(40, 40);
    EXPECT_EQ(position(), " 200,100 held");
    clock.advance(1ns);
    provider->onCursorMove(-1, 40);
    EXPECT_EQ(position(), " 200,100 held");
    provider->onCursorMove(40, 40);
    EXPECT_EQ(position(), " 20,10 held");
}

TEST_F(NewRelativeMouse, LinesAreLoggedToTheLetter) {
    settings.error = 13;
    test::CapturedLog log(kLogDebug);
    source->start(surface);
    source->killFocus();
    source->rmiLogicalDimensions(1596, 798, 2, 4);
    source->rmiMousePosition(1, 1);
    press(0, 0);
    (void)take();
    std::string said;
    for (const auto& line : log.take())
        said += line.text + '\n';
    for (const char* line : {
             "Source::start() mouse speed=10\n",
             "Source::readDragFactor() DragSpeed is not an integer or can't be read, error 13\n",
             "State::onNotProcessed() Event orbelantine::RelativeMouseState::killFocus not "
             "processed in RelativeMouseStateStart\n",
             "Source::rmiLogicalDimensions() new dimensions 1596x798, scale=2.000000, inset=4, "
             "logical 1000x500\n",
             "Source::doSendMouseDeltaAfterRotation() move dx=32767, dy=32767\n",
             "Source::doConvertRmiToDevicePosition() no RMI viewport info available\n",
             "StateReady::doClick() touch=0, down=1, x=0, y=0, reconnect=0\n",
         })
        EXPECT_NE(said.find(std::string("orbelantine::RelativeMouse") + line), std::string::npos)
            << line;
}

} // namespace

} // namespace orbelantine
