#pragma once

#include "input/android/VelocityTracker.h"

#include <cstdint>
#include <limits>

namespace orbelantine {

/// How a pointer is accelerated: by `scale` alone below the low threshold, by `scale` times
/// `acceleration` from the high one on, and by a linear ramp between them. Speeds are in model
/// units per second.
struct VelocityControlParameters {
    float scale = 1;
    float lowThreshold = 0;
    float highThreshold = 0;
    float acceleration = 1;
};

/// The phone's pointer acceleration, delta by delta. A value: a copy goes on independently, and
/// assignment allocates nothing. One thread at a time.
class VelocityControl {
  public:
    struct Delta {
        float x = 0;
        float y = 0;
    };

    /// Also forgets every move.
    void setParameters(const VelocityControlParameters& parameters);
    /// What the phone makes of a delta at `eventTime` nanoseconds. Two zeros leave everything
    /// untouched; a pause of 500 ms forgets every move.
    Delta move(std::int64_t eventTime, float dx, float dy);

  private:
    static constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::min();

    void reset();
    [[nodiscard]] float scaleAtCurrentSpeed() const;

    VelocityControlParameters mParameters;
    std::int64_t mLastMovementTime = kNever;
    float mRawX = 0;
    float mRawY = 0;
    android::VelocityTracker mTracker;
};

} // namespace orbelantine
