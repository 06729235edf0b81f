#include "tools/virtual_phone/Cursor.h"

#include <algorithm>

namespace orbelantine::phone {

namespace {

constexpr int kAbsoluteRange = 65535;

int toPixel(int absolute, int size) {
    return (absolute * (size - 1) + kAbsoluteRange / 2) / kAbsoluteRange;
}

} // namespace

Cursor::Cursor(ScreenSize screen)
    : mScreen(screen)
    , mPosition{screen.width / 2, screen.height / 2} {}

void Cursor::moveBy(int dx, int dy) {
    mPosition.x = std::clamp(mPosition.x + dx, 0, mScreen.width - 1);
    mPosition.y = std::clamp(mPosition.y + dy, 0, mScreen.height - 1);
}

void Cursor::moveTo(std::uint16_t x, std::uint16_t y) {
    mPosition = {toPixel(x, mScreen.width), toPixel(y, mScreen.height)};
}

} // namespace orbelantine::phone
