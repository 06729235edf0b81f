#include "input/android/VelocityControl.h"

#include <cmath>

namespace orbelantine {

namespace {

constexpr std::int64_t kStopTimeNs = 500000000;
constexpr std::uint32_t kPointer = 0;

} // namespace

void VelocityControl::setParameters(const VelocityControlParameters& parameters) {
    mParameters = parameters;
    reset();
}

void VelocityControl::reset() {
    mLastMovementTime = kNever;
    mRawX = 0;
    mRawY = 0;
    mTracker.clear();
}

VelocityControl::Delta VelocityControl::move(std::int64_t eventTime, float dx, float dy) {
    if (dx == 0 && dy == 0)
        return {};
    if (eventTime >= mLastMovementTime + kStopTimeNs)
        reset();
    mLastMovementTime = eventTime;
    mRawX += dx;
    mRawY += dy;
    const android::Position position{mRawX, mRawY};
    mTracker.addMovement(eventTime, android::IdBits::of(kPointer), &position);
    const float scale = scaleAtCurrentSpeed();
    return {scale * dx, scale * dy};
}

float VelocityControl::scaleAtCurrentSpeed() const {
    const auto& [scale, low, high, acceleration] = mParameters;
    float vx = 0;
    float vy = 0;
    if (!mTracker.getVelocity(kPointer, vx, vy))
        return scale;
    const float speed = std::hypot(vx, vy) * scale;
    if (speed >= high)
        return scale * acceleration;
    if (speed > low)
        return scale * (((speed - low) / (high - low)) * (acceleration - 1) + 1);
    return scale;
}

} // namespace orbelantine
