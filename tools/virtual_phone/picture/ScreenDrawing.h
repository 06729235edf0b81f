#pragma once

#include "tools/virtual_phone/phone/Phone.h"
#include "tools/virtual_phone/picture/Markers.h"
#include "tools/virtual_phone/picture/Svg.h"

namespace orbelantine::phone {

struct DrawnSize {
    double width = 0;
    double height = 0;
};

/// The screen's size in the picture: as large as its proportions let it be.
[[nodiscard]] DrawnSize drawnSize(Screen screen);

/// The gradient from early to late, as the legend shows it; `at` is 0 to 1.
[[nodiscard]] std::string pathColour(double at);

/// What the phone shows, its top left corner at the origin: the text field, the cursor's path, the
/// marks and the cursor.
void drawScreen(SvgWriter& svg, const Phone& phone);

} // namespace orbelantine::phone
