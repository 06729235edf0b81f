#pragma once

#include "input/android/VelocityTrackerStrategy.h"

#include <array>
#include <cstdint>

namespace android {

/// Follows each pointer by a low-pass filter over its velocity (degree 1), or over its
/// acceleration too (degree 2).
class IntegratingVelocityTrackerStrategy final : public VelocityTrackerStrategy {
  public:
    explicit IntegratingVelocityTrackerStrategy(std::uint32_t degree);

    void clear() override;
    void clearPointers(IdBits ids) override;
    void addMovement(std::int64_t eventTime, IdBits ids, const Position* positions) override;
    [[nodiscard]] bool getEstimator(std::uint32_t id, Estimator& out) const override;

  private:
    struct Axis {
        float pos = 0;
        float vel = 0;
        float accel = 0;
    };

    struct State {
        std::int64_t updateTime = 0;
        /// How many derivatives are known.
        std::uint32_t degree = 0;
        Axis x;
        Axis y;
    };

    void update(State& state, std::int64_t eventTime, const Position& position) const;
    void integrate(Axis& axis, std::uint32_t known, float position, float dt) const;

    std::uint32_t mDegree;
    IdBits mPointerIdBits;
    std::array<State, 32> mStates{};
};

} // namespace android
