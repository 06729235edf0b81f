#include "input/RelativeMouseSource.h"

#include "tests/input/RelativeMouseFixture.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orbelantine {

namespace {

using namespace std::chrono_literals;
using test::Journal;
using test::RelativeMouse;

const Journal kParked = {"move 32767,32767", "pause 100"};

Journal operator+(Journal first, const Journal& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

void press(RelativeMouse& mouse, std::int32_t x = 400, std::int32_t y = 200) {
    mouse.source->mouseLButton(true, x, y, 0, false);
}

void release(RelativeMouse& mouse) {
    mouse.source->mouseLButton(false, 7, 7, 0, false);
}

TEST(RelativeMouseSource, ComesFromTheFactoryAndIsNotAbsolute) {
    auto& factory = OSALFactory::instance();
    const auto made = osalCreate<IMouseSource>(factory, "IMouseSource", KVStore(), "");
    ASSERT_NE(boost::dynamic_pointer_cast<RelativeMouseSource>(made), nullptr);
    EXPECT_FALSE(made->isAbsolute());
}

TEST(RelativeMouseSource, DimensionsMakeItReadyAndParkTwice) {
    RelativeMouse mouse;
    mouse.source->start(mouse.surface);
    EXPECT_EQ(mouse.state(), "RelativeMouseStateStart");
    mouse.source->rmiLogicalDimensions(0, 250, 1, 0);
    EXPECT_EQ(mouse.take(), Journal{});
    mouse.phone.provider->onLogicalDimensionsChanged(500, 250, 1, 8);
    EXPECT_EQ(mouse.take(), kParked + kParked);
    EXPECT_EQ(mouse.state(), "RelativeMouseStateReady");
    EXPECT_EQ(mouse.position(), " 491,241");
}

TEST(RelativeMouseSource, AClickMovesThenPressesAndParksAfterItsRelease) {
    RelativeMouse mouse(true);
    mouse.beReady();
    press(mouse);
    EXPECT_EQ(mouse.take(), (Journal{"move -299,-149", "pause 100", "leftDown 0,0", "lock"}));
    EXPECT_EQ(mouse.position(), " 200,100 held");
    release(mouse);
    EXPECT_EQ(mouse.take(), (Journal{"unlock 500,400", "leftUp 0,0"}) + kParked);
    EXPECT_EQ(mouse.position(), " 499,249");
}

TEST(RelativeMouseSource, AReconnectParksBeforeTheMove) {
    RelativeMouse mouse;
    mouse.beReady();
    mouse.source->mouseLButton(true, 400, 200, 0, true);
    EXPECT_EQ(mouse.take(),
              (kParked + Journal{"move -299,-149", "pause 0", "leftDown 0,0", "lock"}));
    // The release keeps to the place from before it.
    mouse.source->mouseLButton(false, 0, 0, 0, true);
    EXPECT_EQ(mouse.take(),
              (kParked + Journal{"move -299,-149", "unlock 500,400", "leftUp 0,0"} + kParked));
}

TEST(RelativeMouseSource, TouchesAreOnTheScreenAndDragWhileHeld) {
    RelativeMouse mouse;
    mouse.beReady();
    mouse.source->touchMove(500, 400, 3);
    mouse.source->mouseMove(1, 1, 0);
    EXPECT_EQ(mouse.take(), Journal{});
    mouse.source->touch(true, 500, 400, 3, false);
    mouse.source->touchMove(520, 400, 3);
    mouse.source->touchMove(520, 400, 3);
    mouse.source->touch(false, 520, 420, 3, false);
    EXPECT_EQ(mouse.take(), (Journal{"move -299,-149", "pause 0", "leftDown 0,0", "lock",
                                     "move 10,0", "move 0,10", "unlock 520,420", "leftUp 0,0"}) +
                                kParked);
}

TEST(RelativeMouseSource, RawMovesDragByFactorOnlyWhileHeld) {
    RelativeMouse mouse;
    mouse.beReady();
    mouse.source->rawMouseMove(6, 0);
    EXPECT_EQ(mouse.take(), Journal{});
    press(mouse);
    (void)mouse.take();
    mouse.source->rawMouseMove(6, 0);
    mouse.source->rawMouseMove(0, -1);
    mouse.source->rawMouseMove(0, 0);
    EXPECT_EQ(mouse.take(), (Journal{"move 10,0", "move 0,-1"}));
    EXPECT_EQ(mouse.position(), " 210,99 held");
    mouse.source->rotationChanged(2);
    press(mouse);
    (void)mouse.take();
    mouse.source->rawMouseMove(6, 0);
    EXPECT_EQ(mouse.take(), Journal{"move 0,-10"});
}

TEST(RelativeMouseSource, RawMovesOnAScaledScreenSendRootsAndCountInFull) {
    RelativeMouse mouse(true);
    mouse.beReady(1596, 798, 2);
    press(mouse, 900, 450);
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
        mouse.beReady();
        press(mouse);
        (void)mouse.take();
        mouse.source->rawMouseMove(6, 0);
        EXPECT_EQ(mouse.take(), Journal{moved}) << error;
    }
}

TEST(RelativeMouseSource, TheJiggleGoesBackAndForth) {
    RelativeMouse mouse;
    mouse.beReady();
    mouse.source->rawMouseMove(999, 999);
    EXPECT_EQ(mouse.take(), (Journal{"move -1,0", "move 1,0"}));
    EXPECT_EQ(mouse.position(), " 499,249");
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
        press(mouse);
        EXPECT_EQ(mouse.take(),
                  (Journal{parking, "pause 100", move, "pause 0", "leftDown 0,0", "lock"}));
    }
}

TEST(RelativeMouseSource, TheModelTakesWhatThePhoneMakesOfADeltaUnlessItIsTurned) {
    for (const auto& [rotation, sent, position] :
         {std::tuple{1, "move -149,-74", " 52,27 held"}, {3, "move 149,74", " 350,175 held"}}) {
        RelativeMouse mouse;
        mouse.phone.acceleration = 3;
        mouse.phone.reversal = 2;
        mouse.beReady();
        mouse.source->rotationChanged(rotation);
        (void)mouse.take();
        press(mouse);
        EXPECT_EQ(mouse.take().front(), sent);
        EXPECT_EQ(mouse.position(), position);
        EXPECT_EQ(mouse.phone.lastMoveNs, mouse.clock.now().time_since_epoch().count());
    }
}

TEST(RelativeMouseSource, ALongMoveOnAScaledScreenRepeatsTheButton) {
    RelativeMouse mouse;
    mouse.beReady(3192, 1596, 2);
    EXPECT_EQ(mouse.position(), " 1999,999");
    press(mouse, 700, 499);
    EXPECT_EQ(mouse.take(), (Journal{"move -90,0", "move -53,0", "pause 0", "leftDown 0,0", "lock",
                                     "pause 0", "leftDown 0,0", "lock"}));
    EXPECT_EQ(mouse.position(), " 1400,998 held");
    // A move there takes over the flags of its point.
    mouse.source->touchMove(810, 699, 0);
    EXPECT_EQ(mouse.take(), Journal{"move 17,0"});
    EXPECT_EQ(mouse.position(), " 1420,998");
}

TEST(RelativeMouseSource, ARunOfWheelEventsMovesOnceAndParksASecondAfterTheLast) {
    RelativeMouse mouse;
    mouse.beReady();
    mouse.source->mouseWheel(true, 500, 400, 3);
    EXPECT_EQ(mouse.take(), (Journal{"move -299,-149", "pause 0", "wheelUp 0,3"}));
    mouse.clock.advance(999ms);
    mouse.source->mouseWheel(false, 900, 600, -1);
    EXPECT_EQ(mouse.take(), Journal{"wheelDown 0,-1"});
    mouse.clock.advance(999ms);
    EXPECT_EQ(mouse.take(), Journal{});
    mouse.clock.advance(1ms);
    EXPECT_EQ(mouse.take(), kParked);
    mouse.clock.advance(5s);
    EXPECT_EQ(mouse.take(), Journal{});
    mouse.source->mouseWheel(true, 500, 400, 1);
    EXPECT_EQ(mouse.take(), (Journal{"move -299,-149", "pause 0", "wheelUp 0,1"}));
}

TEST(RelativeMouseSource, AClickOrTheEndTakesBackTheParkingAfterTheWheel) {
    RelativeMouse mouse;
    mouse.beReady();
    mouse.source->mouseWheel(true, 500, 400, 1);
    press(mouse);
    (void)mouse.take();
    mouse.clock.advance(2s);
    EXPECT_EQ(mouse.take(), Journal{});
    mouse.source->mouseWheel(true, 500, 400, 1);
    mouse.source->stop();
    (void)mouse.take();
    mouse.clock.advance(2s);
    EXPECT_EQ(mouse.take(), Journal{});
}

TEST(RelativeMouseSource, TheRightButtonStaysWhereTheCursorIs) {
    RelativeMouse mouse;
    mouse.beReady();
    mouse.source->mouseRButton(true, 1, 1, true);
    mouse.source->mouseRButton(false, 1, 1, false);
    EXPECT_EQ(mouse.take(), (Journal{"rightDown 0,0", "rightUp 0,0"}));
}

TEST(RelativeMouseSource, LosingTheFocusEndsADrag) {
    RelativeMouse mouse;
    mouse.beReady();
    mouse.source->killFocus();
    EXPECT_EQ(mouse.take(), Journal{});
    press(mouse);
    (void)mouse.take();
    mouse.source->killFocus();
    mouse.source->killFocus();
    EXPECT_EQ(mouse.take(), (Journal{"unlock 500,400", "leftUp 0,0"}) + kParked);
}

TEST(RelativeMouseSource, WithoutDimensionsTheSystemMouseStaysFree) {
    RelativeMouse mouse;
    mouse.beReady();
    mouse.source->rmiLogicalDimensions(0, 0, 1, 0);
    press(mouse);
    release(mouse);
    EXPECT_EQ(mouse.take(),
              (Journal{"move -499,-249", "pause 0", "leftDown 0,0", "leftUp 0,0"}) + kParked);
}

TEST(RelativeMouseSource, ANewSourceBeginsWithTheLastDimensionsOfAny) {
    RelativeMouse mouse;
    mouse.beReady(640, 480);
    mouse.make();
    mouse.source->start(mouse.surface);
    mouse.inside([&] { mouse.source->doMouseMoveHide(); });
    EXPECT_EQ(mouse.position(), " 639,479");
    mouse.inside([&] {
        mouse.source->updateLogicalDimensions(320, 240);
        mouse.source->doMouseMoveHide();
    });
    EXPECT_EQ(mouse.position(), " 319,239");
}

TEST(RelativeMouseSource, ReportsOfThePhonesCursorCorrectTheModelUnlessTheyMayBeEchoes) {
    RelativeMouse mouse;
    mouse.beReady();
    press(mouse);
    mouse.phone.provider->onCursorViewPortChanged(1000, 1000);
    (void)mouse.take();
    mouse.clock.advance(201ms - 1ns);
    mouse.phone.provider->onCursorMove(40, 40);
    EXPECT_EQ(mouse.position(), " 200,100 held");
    mouse.clock.advance(1ns);
    mouse.phone.provider->onCursorMove(-1, 40);
    EXPECT_EQ(mouse.position(), " 200,100 held");
    mouse.phone.provider->onCursorMove(40, 40);
    EXPECT_EQ(mouse.position(), " 20,10 held");
}

TEST(RelativeMouseSource, LinesAreLoggedToTheLetter) {
    RelativeMouse mouse;
    mouse.settings.error = 13;
    test::CapturedLog log(kLogDebug);
    mouse.source->start(mouse.surface);
    mouse.source->killFocus();
    mouse.source->rmiLogicalDimensions(1596, 798, 2, 4);
    mouse.source->rmiMousePosition(1, 1);
    mouse.source->rotationChanged(0);
    press(mouse, 0, 0);
    (void)mouse.take();
    const auto lines = log.take();
    const test::CapturedLog::Line kExpected[] = {
        {1, "orbelantine::RelativeMouseSource::start() mouse speed=10"},
        {3, "orbelantine::RelativeMouseSource::readDragFactor() DragSpeed is not an integer or "
            "can't be read, error 13"},
        {1, "orbelantine::RelativeMouseState::onNotProcessed() Event "
            "orbelantine::RelativeMouseState::killFocus not processed in RelativeMouseStateStart"},
        {1, "orbelantine::RelativeMouseSource::rmiLogicalDimensions() new dimensions 1596x798, "
            "scale=2.000000, inset=4, logical 1000x500"},
        {1, "orbelantine::RelativeMouseStateStart::rmiLogicalDimensions() 1596,798"},
        {1, "orbelantine::RelativeMouseSource::doSendMouseDeltaAfterRotation() move dx=32767, "
            "dy=32767"},
        {4, "orbelantine::RelativeMouseSource::doConvertRmiToDevicePosition() no RMI viewport info "
            "available"},
        {1, "orbelantine::RelativeMouseSource::rotationChanged() new rotation=0"},
        {1, "orbelantine::RelativeMouseStateReady::doClick() touch=0, down=1, x=0, y=0, "
            "reconnect=0"},
        {1, "orbelantine::RelativeMouseSource::doMouseMove() left down"}};
    for (const auto& line : kExpected)
        EXPECT_NE(std::find(lines.begin(), lines.end(), line), lines.end()) << line.text;
}

} // namespace

} // namespace orbelantine
