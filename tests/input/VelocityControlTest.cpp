#include "input/android/VelocityControl.h"

#include <gtest/gtest.h>

namespace orbelantine {

namespace {

constexpr std::int64_t kMs = 1000000;

VelocityControl phone() {
    VelocityControl control;
    control.setParameters({1, 500, 3000, 3});
    return control;
}

TEST(VelocityControl, FactorGrowsWithSpeedBetweenTheThresholds) {
    // Ten milliseconds after a first delta, each unit is a speed of 100.
    const std::pair<float, float> factors[] = {
        {1, 1}, {4.9F, 1}, {7.5F, 1.2F}, {17.5F, 2}, {29.9F, 2.992F}, {30.1F, 3}, {900, 3}};
    for (const auto& [delta, factor] : factors) {
        VelocityControl control = phone();
        EXPECT_EQ(control.move(0, 0, 70).y, 70);
        const auto moved = control.move(10 * kMs, -0.6F * delta, 0.8F * delta);
        EXPECT_NEAR(moved.x, -0.6F * delta * factor, 0.001F * delta) << delta;
        EXPECT_NEAR(moved.y, 0.8F * delta * factor, 0.001F * delta) << delta;
    }
}

TEST(VelocityControl, ScaleCountsInTheSpeedToo) {
    VelocityControl control;
    control.setParameters({2, 500, 3000, 3});
    EXPECT_EQ(control.move(0, 1, 0).x, 2);
    EXPECT_NEAR(control.move(10 * kMs, 8.75F, 0).x, 8.75F * 2 * 2, 0.001F);
}

TEST(VelocityControl, PauseOf500MsForgetsThePosition) {
    // Beyond 2^25 a raw position is a multiple of 4, so the speed shows whether it was reset.
    constexpr float kFar = 33554432;
    const auto after = [](std::int64_t pause) {
        VelocityControl control = phone();
        control.move(0, kFar, 0);
        // No delta at all is no movement that would end the pause.
        EXPECT_EQ(control.move(pause / 2, 0, 0).x, 0);
        control.move(pause, 1, 0);
        return control.move(pause + 10 * kMs, 29, 0).x;
    };
    EXPECT_NEAR(after(500 * kMs - 1), 29 * 2.84F, 1.0F);
    EXPECT_NEAR(after(500 * kMs), 29 * 2.92F, 0.01F);
}

TEST(VelocityControl, NewParametersForgetEveryMove) {
    VelocityControl control = phone();
    control.move(0, 50, 0);
    control.setParameters({1, 500, 3000, 3});
    EXPECT_EQ(control.move(10 * kMs, 50, 0).x, 50);
}

} // namespace

} // namespace orbelantine
