#pragma once

#include "tools/aim_report/Rig.h"

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

namespace orbelantine::aim {

struct Grid {
    /// On an upright phone; they change places on one on its side.
    int columns = 20;
    int rows = 40;
};

/// The quadrants and the axes, in the order of kDirections.
struct Direction {
    const char* name;
    int x;
    int y;
};

inline constexpr std::array<Direction, 8> kDirections = {{{"right and down", 1, 1},
                                                          {"right and up", 1, -1},
                                                          {"left and down", -1, 1},
                                                          {"left and up", -1, -1},
                                                          {"right", 1, 0},
                                                          {"left", -1, 0},
                                                          {"down", 0, 1},
                                                          {"up", 0, -1}}};

enum class Gesture { Click, Drag, PacedDrag };

/// What a trial is called.
[[nodiscard]] const char* nameOf(Gesture gesture);

/// One click or drag: where it was meant to end and where it did, in pixels of the phone.
struct Trial {
    Gesture gesture = Gesture::Click;
    /// Index in kDirections; 0 for a click.
    std::size_t direction = 0;
    /// Deltas to the press.
    unsigned legs = 0;
    Point target;
    Point landed;
    /// The farthest that the cursor was from the finger on a drag's way; nothing for a click.
    std::optional<double> path;

    [[nodiscard]] double error() const { return distance(landed, target); }
};

/// A click in the middle of each of the grid's cells. The phone shows them as targets.
[[nodiscard]] std::vector<Trial> clickGrid(Rig& rig, Grid grid);

/// Drags of several lengths and speeds across the middle of the screen, in every direction.
[[nodiscard]] std::vector<Trial> dragAround(Rig& rig, Pace pace);

} // namespace orbelantine::aim
