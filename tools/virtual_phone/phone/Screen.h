#pragma once

namespace orbelantine::phone {

/// Pixels from the screen's top left corner.
struct Point {
    int x = 0;
    int y = 0;

    bool operator==(const Point&) const = default;
};

inline constexpr int kMinScreen = 100;
inline constexpr int kMaxScreen = 10'000;
inline constexpr double kMinScale = 0.1;
inline constexpr double kMaxScale = 10;

/// The screen as it is displayed: of a phone on its side, wider than high.
struct Screen {
    int width = 1080;
    int height = 2340;
    /// Of the viewport.
    double scale = 1;
    /// 1 is natural, 2 to 4 are its quarter turns.
    int rotation = 1;

    bool operator==(const Screen&) const = default;
};

} // namespace orbelantine::phone
