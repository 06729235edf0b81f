#include "tools/virtual_phone/phone/Cursor.h"

#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <utility>

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
    // Each time 292.89 and 175.73 pixels.
    Cursor moved = cursor(Acceleration::Curve, {10'000, 10'000, 2});
    for (int i = 0; i < 3; ++i)
        moved.moveBy(50, 30);
    EXPECT_EQ(moved.position(), (Point{5878, 5527})) << "fractions add up";
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

TEST_F(CursorTest, AndroidGoesByTheSpeedUntilTheScreenIsNew) {
    Cursor moved = cursor(Acceleration::Android);
    const auto moveRight = [&](int counts) {
        const int before = moved.position().x;
        mClock.advance(32ms);
        moved.moveBy(counts, 0);
        return moved.position().x - before;
    };
    // At the second delta the speed is known: 500 counts a second go as they are, from 3000 on it
    // is thrice the way, and between them the factor grows evenly.
    for (const auto& [counts, way] : {std::pair{16, 16}, {56, 112}, {96, 288}, {200, 600}}) {
        moved.setAcceleration(Acceleration::Android);
        EXPECT_EQ(moveRight(counts), counts);
        EXPECT_EQ(moveRight(counts), way);
    }
    moved.setScreen({6000, 4000});
    EXPECT_EQ(moved.position(), (Point{5999, 3999}));
    EXPECT_EQ(moveRight(-200), -200);
}

} // namespace orbelantine::phone
