#include "input/android/VelocityControl.h"

#include <gtest/gtest.h>

namespace orbelantine {

namespace {

constexpr std::int64_t kMs = 1000000;

TEST(VelocityControl, ScaleCountsInTheSpeedTooAndNewParametersForgetEveryMove) {
    VelocityControl control;
    control.move(-kMs, 50, 0);
    control.setParameters({2, 500, 3000, 3});
    EXPECT_EQ(control.move(0, 1, 0).x, 2);
    EXPECT_NEAR(control.move(10 * kMs, 8.75F, 0).x, 8.75F * 2 * 2, 0.001F);
}

TEST(VelocityControl, PauseOf500MsForgetsThePosition) {
    // Beyond 2^25 a raw position is a multiple of 4, so the speed shows whether it was reset.
    constexpr float kFar = 33554432;
    const auto after = [](std::int64_t pause) {
        VelocityControl control;
        control.setParameters({1, 500, 3000, 3});
        control.move(0, kFar, 0);
        // No delta at all is no movement that would end the pause.
        EXPECT_EQ(control.move(pause / 2, 0, 0).x, 0);
        control.move(pause, 1, 0);
        return control.move(pause + 10 * kMs, 29, 0).x;
    };
    EXPECT_NEAR(after(500 * kMs - 1), 29 * 2.84F, 1.0F);
    EXPECT_NEAR(after(500 * kMs), 29 * 2.92F, 0.01F);
}

} // namespace

} // namespace orbelantine
