#include "tools/aim_report/Trials.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace orbelantine::aim {

namespace {

// Pixels of the surface, in all and for each step.
constexpr double kLengths[] = {100, 200, 400};
constexpr double kSpeeds[] = {4, 8, 16, 32};
// Of a quadrant's drags, from the horizontal.
constexpr double kDegrees[] = {25, 45, 65};

struct Vector {
    double x;
    double y;
};

std::vector<Vector> unitVectors(const Direction& direction) {
    if (direction.x == 0 || direction.y == 0)
        return {{static_cast<double>(direction.x), static_cast<double>(direction.y)}};
    std::vector<Vector> vectors;
    for (const double degrees : kDegrees) {
        const double angle = degrees * std::numbers::pi / 180;
        vectors.push_back({direction.x * std::cos(angle), direction.y * std::sin(angle)});
    }
    return vectors;
}

std::vector<Point> wayAcross(Size surface, const Vector& unit, double length, double speed) {
    const auto at = [&](double along) {
        return Point{static_cast<int>(std::lround(surface.width / 2.0 + unit.x * along)),
                     static_cast<int>(std::lround(surface.height / 2.0 + unit.y * along))};
    };
    std::vector<Point> way;
    const int steps = static_cast<int>(length / speed);
    for (int i = 0; i <= steps; ++i)
        way.push_back(at(speed * i - length / 2));
    return way;
}

} // namespace

const char* nameOf(Gesture gesture) {
    constexpr const char* kNames[] = {"click", "drag", "paced drag"};
    return kNames[static_cast<std::size_t>(gesture)];
}

std::vector<Trial> clickGrid(Rig& rig, Grid grid) {
    const auto [width, height] = rig.surface();
    if (width > height)
        std::swap(grid.columns, grid.rows);
    std::vector<Trial> trials;
    for (int row = 0; row < grid.rows; ++row)
        for (int column = 0; column < grid.columns; ++column) {
            const Point place{width * (2 * column + 1) / (2 * grid.columns),
                              height * (2 * row + 1) / (2 * grid.rows)};
            const Point target = rig.onPhone(place);
            rig.phone().setTarget(target);
            const Rig::Landing landing = rig.click(place);
            trials.push_back({Gesture::Click, 0, landing.legs, target, landing.press, {}});
        }
    return trials;
}

std::vector<Trial> dragAround(Rig& rig, Pace pace) {
    const Gesture gesture = pace == Pace::Paced ? Gesture::PacedDrag : Gesture::Drag;
    std::vector<Trial> trials;
    for (std::size_t i = 0; i < kDirections.size(); ++i)
        for (const Vector& unit : unitVectors(kDirections[i]))
            for (const double length : kLengths)
                for (const double speed : kSpeeds) {
                    const auto way = wayAcross(rig.surface(), unit, length, speed);
                    const Rig::Landing landing = rig.drag(way, pace);
                    trials.push_back({gesture, i, landing.legs, rig.onPhone(way.back()),
                                      landing.release, landing.path});
                }
    return trials;
}

} // namespace orbelantine::aim
