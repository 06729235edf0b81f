#include "tools/virtual_phone/Cursor.h"

#include "input/VelocityControl.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <chrono>

namespace orbelantine::phone {

namespace {

using namespace std::chrono_literals;

class CursorTest : public testing::Test {
  protected:
    Cursor cursor(Acceleration acceleration, Screen screen = {10'000, 10'000}) {
        return {screen, acceleration, mClock};
    }

    test::HandClock mClock;
};

} // namespace

TEST_F(CursorTest, AndroidMovesAsItsModelAndKeepsTheFraction) {
    VelocityControl model;
    model.setParameters(
        {.scale = 1, .lowThreshold = 500, .highThreshold = 3000, .acceleration = 3});
    Cursor moved = cursor(Acceleration::Android);
    double x = 5000;
    double y = 5000;
    for (int i = 0; i < 40; ++i) {
        mClock.advance(i == 20 ? 600ms : 8ms);
        const auto way = model.move(mClock.now().time_since_epoch().count(),
                                    static_cast<float>(i % 20), static_cast<float>(-7));
        x += way.x;
        y += way.y;
        moved.moveBy(i % 20, -7);
        ASSERT_EQ(moved.position(), (Point{static_cast<int>(x), static_cast<int>(y)})) << i;
    }
    EXPECT_GT(x, 5000 + 2 * 190 * 1.5) << "too slow to be accelerated";
}

TEST_F(CursorTest, CurveGoesByTheLengthAndKeepsTheDirection) {
    struct Case {
        int dx, dy;
        Point at;
    };

    // Up to 160 logical units for 50 counts the parabola, beyond them the line; at this scale one
    // unit is 1.596 pixels.
    for (const auto& [dx, dy, at] : {Case{50, 0, {5255, 5000}}, Case{30, 40, {5153, 5204}},
                                     Case{-5, 0, {4996, 5000}}, Case{0, -100, {5000, 4225}}}) {
        Cursor moved = cursor(Acceleration::Curve, {10'000, 10'000, 2});
        moved.moveBy(dx, dy);
        EXPECT_EQ(moved.position(), at) << dx << " " << dy;
    }
}

TEST_F(CursorTest, EveryRotationIsTurnedBack) {
    // What a host sends for the displayed delta (5, -3).
    constexpr Point kSent[] = {{5, -3}, {-3, -5}, {-5, 3}, {3, 5}};
    for (int rotation = 1; rotation <= 4; ++rotation) {
        Cursor moved = cursor(Acceleration::None, {200, 100, 1, rotation});
        moved.moveBy(kSent[rotation - 1].x, kSent[rotation - 1].y);
        EXPECT_EQ(moved.position(), (Point{105, 47})) << rotation;
    }
}

TEST_F(CursorTest, ParkingEndsInTheCornerUnderAnyAcceleration) {
    for (const Acceleration kind :
         {Acceleration::None, Acceleration::Android, Acceleration::Curve}) {
        Cursor moved = cursor(kind, {200, 100, 2});
        moved.moveBy(32767, 32767);
        EXPECT_EQ(moved.position(), (Point{199, 99})) << nameOf(kind);
    }
}

TEST_F(CursorTest, NewScreenForgetsTheSpeedAndKeepsThePlace) {
    Cursor moved = cursor(Acceleration::Android);
    const auto moveRight = [&] {
        const int before = moved.position().x;
        mClock.advance(8ms);
        moved.moveBy(50, 0);
        return moved.position().x - before;
    };
    EXPECT_EQ(moveRight(), 50);
    EXPECT_EQ(moveRight(), 150);
    moved.setScreen({6000, 4000});
    EXPECT_EQ(moved.position(), (Point{5200, 3999}));
    EXPECT_EQ(moveRight(), 50);
    EXPECT_EQ(moveRight(), 150);
    moved.setAcceleration(Acceleration::Android);
    EXPECT_EQ(moveRight(), 50);
}

} // namespace orbelantine::phone
