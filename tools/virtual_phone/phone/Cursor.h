#pragma once

#include "tools/virtual_phone/phone/Acceleration.h"
#include "tools/virtual_phone/phone/Screen.h"

#include <cstdint>

namespace orbelantine::phone {

/// Where the phone draws its pointer: starts in the middle of the screen and never leaves it. It
/// keeps the fraction of a pixel.
class Cursor {
  public:
    /// `clock` outlives the cursor.
    Cursor(const Screen& screen, Acceleration acceleration, IClock& clock);

    /// The pixel that it stands on.
    [[nodiscard]] Point position() const;

    [[nodiscard]] const Screen& screen() const { return mScreen; }

    [[nodiscard]] Acceleration acceleration() const { return mAccelerator.kind(); }

    /// A relative report's deltas, in the frame of the phone held upright: accelerated there, then
    /// turned with the screen.
    void moveBy(int dx, int dy);
    /// An absolute report's position, 0..65535 from edge to edge.
    void moveTo(std::uint16_t x, std::uint16_t y);
    /// Both forget the moves before; where the new screen is smaller, it ends at its edges.
    void setScreen(const Screen& screen);
    void setAcceleration(Acceleration acceleration);

  private:
    void place(double x, double y);

    Screen mScreen;
    Accelerator mAccelerator;
    double mX;
    double mY;
};

} // namespace orbelantine::phone
