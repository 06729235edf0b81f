#pragma once

#include <cstdint>

namespace orbelantine::phone {

/// Pixels from the screen's top left corner.
struct Point {
    int x = 0;
    int y = 0;

    bool operator==(const Point&) const = default;
};

struct ScreenSize {
    int width = 1080;
    int height = 2340;

    bool operator==(const ScreenSize&) const = default;
};

/// Where the phone draws its pointer: starts in the middle of the screen and never leaves it.
class Cursor {
  public:
    explicit Cursor(ScreenSize screen);

    [[nodiscard]] Point position() const { return mPosition; }

    /// A relative report's deltas, one pixel each.
    void moveBy(int dx, int dy);
    /// An absolute report's position, 0..65535 from edge to edge.
    void moveTo(std::uint16_t x, std::uint16_t y);

  private:
    ScreenSize mScreen;
    Point mPosition;
};

} // namespace orbelantine::phone
