#include "tools/virtual_phone/phone/Acceleration.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace orbelantine::phone {

namespace {

constexpr VelocityControlParameters kAndroid = {
    .scale = 1, .lowThreshold = 500, .highThreshold = 3000, .acceleration = 3};

/// Logical units for a report of this length: a parabola, and beyond the knee a line.
double curve(double length) {
    constexpr double kKnee = 160;
    const double root = length / 1.66666667 + 1;
    const double way = (root * root - 1) / 6;
    return way > kKnee ? 6.5 * length - 165 : way;
}

/// Logical units to a pixel.
double logicalUnits(double scale) {
    return 2.0 / scale / 1.596;
}

Way byLength(int dx, int dy, double scale) {
    const double length = std::hypot(dx, dy);
    if (length == 0)
        return {};
    const double factor = curve(length) / length / logicalUnits(scale);
    return {dx * factor, dy * factor};
}

} // namespace

std::optional<Acceleration> parseAcceleration(std::string_view text) {
    const auto* const name = std::ranges::find(kAccelerationNames, text);
    if (name == kAccelerationNames.end())
        return std::nullopt;
    return static_cast<Acceleration>(std::distance(kAccelerationNames.begin(), name));
}

const char* nameOf(Acceleration acceleration) {
    return kAccelerationNames[static_cast<std::size_t>(acceleration)];
}

Accelerator::Accelerator(Acceleration kind, IClock& clock)
    : mKind(kind)
    , mClock(clock) {
    mModel.setParameters(kAndroid);
}

Way Accelerator::move(int dx, int dy, double scale) {
    switch (mKind) {
    case Acceleration::Android:
        return bySpeed(dx, dy);
    case Acceleration::Curve:
        return byLength(dx, dy, scale);
    case Acceleration::None:
        break;
    }
    return {static_cast<double>(dx), static_cast<double>(dy)};
}

void Accelerator::use(Acceleration kind) {
    mKind = kind;
    mModel.setParameters(kAndroid);
}

Way Accelerator::bySpeed(int dx, int dy) {
    const auto now = mClock.now().time_since_epoch().count();
    const auto moved = mModel.move(now, static_cast<float>(dx), static_cast<float>(dy));
    return {moved.x, moved.y};
}

} // namespace orbelantine::phone
