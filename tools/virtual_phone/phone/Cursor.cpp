#include "tools/virtual_phone/phone/Cursor.h"

#include <algorithm>
#include <cmath>

namespace orbelantine::phone {

namespace {

constexpr int kAbsoluteRange = 65535;

int toPixel(int absolute, int size) {
    return (absolute * (size - 1) + kAbsoluteRange / 2) / kAbsoluteRange;
}

/// From the upright phone's frame into the displayed one.
Way turned(const Way& way, int rotation) {
    switch (rotation) {
    case 2:
        return {-way.y, way.x};
    case 3:
        return {-way.x, -way.y};
    case 4:
        return {way.y, -way.x};
    default:
        return way;
    }
}

} // namespace

// In the middle of the screen, on a whole pixel.
Cursor::Cursor(const Screen& screen, Acceleration acceleration, IClock& clock)
    : mScreen(screen)
    , mAccelerator(acceleration, clock)
    , mX(std::floor(screen.width / 2.0))
    , mY(std::floor(screen.height / 2.0)) {}

Point Cursor::position() const {
    return {static_cast<int>(mX), static_cast<int>(mY)};
}

void Cursor::moveBy(int dx, int dy) {
    const Way way = turned(mAccelerator.move(dx, dy, mScreen.scale), mScreen.rotation);
    place(mX + way.x, mY + way.y);
}

void Cursor::moveTo(std::uint16_t x, std::uint16_t y) {
    place(toPixel(x, mScreen.width), toPixel(y, mScreen.height));
}

void Cursor::setScreen(const Screen& screen) {
    mScreen = screen;
    mAccelerator.use(mAccelerator.kind());
    place(mX, mY);
}

void Cursor::setAcceleration(Acceleration acceleration) {
    mAccelerator.use(acceleration);
}

void Cursor::place(double x, double y) {
    mX = std::clamp(x, 0.0, mScreen.width - 1.0);
    mY = std::clamp(y, 0.0, mScreen.height - 1.0);
}

} // namespace orbelantine::phone
