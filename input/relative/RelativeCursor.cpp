#include "input/relative/RelativeCursor.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orbelantine {

namespace {

constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();

constexpr double kDensityDivisor = 1.596;
constexpr double kLongMove = 420;
constexpr double kCurveKnee = 160;

/// Towards zero. What is no number counts as 0.
std::int32_t truncated(double value) {
    if (std::isnan(value))
        return 0;
    return static_cast<std::int32_t>(std::clamp<double>(value, kLeast, kGreatest));
}

std::int32_t sign(std::int32_t value) {
    return value < 0 ? -1 : 1;
}

double length(CursorDelta move) {
    const auto dx = static_cast<double>(move.dx);
    const auto dy = static_cast<double>(move.dy);
    return std::sqrt(dy * dy + dx * dx);
}

/// The speed counts as signed, so that the sign of the delta stays.
float hardwareDistance(std::int32_t delta, std::uint32_t speed) {
    return static_cast<float>(std::int64_t{static_cast<std::int32_t>(speed)} * delta);
}

// Not std::clamp: the range may be empty.
std::int32_t within(std::int32_t value, std::int64_t most) {
    return std::max(saturated(std::min<std::int64_t>(value, most)), 0);
}

std::int32_t curvedAxis(double ratio, std::int32_t move) {
    return truncated(ratio * std::abs(static_cast<double>(move)) + 0.5) * sign(move);
}

} // namespace

std::int32_t saturated(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, kLeast, kGreatest));
}

bool isWithinReach(std::int32_t dimension) {
    return dimension >= -kReach && dimension <= kReach;
}

CursorExtent extentOf(const IInputContext::Rect& rect) {
    return {.width = saturated(std::int64_t{rect.right} - rect.left),
            .height = saturated(std::int64_t{rect.bottom} - rect.top)};
}

CursorDelta difference(const CursorPoint& to, const CursorPoint& from) {
    return {.dx = saturated(std::int64_t{to.x} - from.x),
            .dy = saturated(std::int64_t{to.y} - from.y)};
}

bool isTurned(std::int32_t rotation) {
    return rotation >= 2 && rotation <= 4;
}

CursorDelta rotated(CursorDelta delta, std::int32_t rotation) {
    const std::int32_t minusDx = saturated(-std::int64_t{delta.dx});
    const std::int32_t minusDy = saturated(-std::int64_t{delta.dy});
    switch (rotation) {
    case 2:
        return {.dx = delta.dy, .dy = minusDx};
    case 3:
        return {.dx = minusDx, .dy = minusDy};
    case 4:
        return {.dx = minusDy, .dy = delta.dx};
    default:
        return delta;
    }
}

CursorExtent logicalExtent(CursorExtent picture, double scale) {
    if (!(scale > 1))
        return picture;
    const double k = 2.0 / scale / kDensityDivisor;
    return {.width = truncated(picture.width * k + 0.5),
            .height = truncated(picture.height * k + 0.5)};
}

std::int32_t draggedLinearly(std::int32_t delta, std::uint32_t speed, float factor) {
    return truncated(hardwareDistance(delta, speed) * factor);
}

std::int32_t draggedByRoot(std::int32_t delta, std::uint32_t speed, float factor) {
    const auto distance = hardwareDistance(delta, speed) * static_cast<float>(sign(delta));
    return truncated(std::sqrt(distance * factor)) * sign(delta);
}

std::int32_t rescaled(std::int32_t value, std::int32_t from, std::int32_t to) {
    const auto product = static_cast<float>(std::int64_t{value} * to);
    return truncated(product / static_cast<float>(from) + 0.5F);
}

CursorPoint toLogical(CursorPoint point, CursorExtent surface, CursorExtent logical) {
    point.x = rescaled(within(point.x, surface.width), surface.width, logical.width);
    point.y = rescaled(within(point.y, surface.height), surface.height, logical.height);
    return point;
}

CursorPoint clamped(CursorPoint point, CursorExtent logical) {
    point.x = within(point.x, std::int64_t{logical.width} - 1);
    point.y = within(point.y, std::int64_t{logical.height} - 1);
    return point;
}

CursorPoint advanced(CursorPoint point, CursorDelta delta, CursorExtent logical) {
    point.x = truncated(static_cast<float>(point.x) + static_cast<float>(delta.dx) + 0.5F);
    point.y = truncated(static_cast<float>(point.y) + static_cast<float>(delta.dy) + 0.5F);
    return clamped(point, logical);
}

bool isLongMove(CursorDelta move) {
    return length(move) > kLongMove;
}

CursorPoint firstLegEnd(const CursorPoint& from, CursorDelta move) {
    const double f = kLongMove / length(move);
    return {.x = saturated(std::int64_t{truncated(f * move.dx)} + from.x),
            .y = saturated(std::int64_t{truncated(f * move.dy)} + from.y)};
}

CursorDelta curved(CursorDelta move) {
    const double d = length(move);
    const double m = d <= kCurveKnee ? (std::sqrt(6 * d + 1) - 1) * 1.66666667 : (d + 165) / 6.5;
    const double r = m / d;
    return {.dx = curvedAxis(r, move.dx), .dy = curvedAxis(r, move.dy)};
}

} // namespace orbelantine
