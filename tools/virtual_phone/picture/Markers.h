#pragma once

#include "tools/virtual_phone/phone/Trace.h"
#include "tools/virtual_phone/picture/Svg.h"

#include <string_view>

namespace orbelantine::phone {

/// A place in the picture.
struct Spot {
    double x = 0;
    double y = 0;
};

/// Colours and fonts that several parts of the picture share.
namespace look {
inline constexpr const char* kInk = "#1e2233";
inline constexpr const char* kFaint = "#7b8198";
inline constexpr const char* kSans = "Inter, 'Segoe UI', Roboto, 'DejaVu Sans', sans-serif";
inline constexpr const char* kMono = "'JetBrains Mono', Consolas, 'DejaVu Sans Mono', monospace";
} // namespace look

/// The shapes that drawMark and drawCursor refer to; once in each picture.
void defineMarkers(SvgWriter& svg);
void drawMark(SvgWriter& svg, MarkKind kind, Spot at);
/// The pointer, its tip at the spot.
void drawCursor(SvgWriter& svg, Spot at);
/// Where the path begins.
void drawStart(SvgWriter& svg, Spot at);
/// A place to click, and the line from it to where the click landed.
void drawTarget(SvgWriter& svg, Spot at);
void drawMiss(SvgWriter& svg, Spot target, Spot hit);
/// A short text to the right of a mark, or to the left of it.
enum class Side { Left, Right };
void drawLabel(SvgWriter& svg, Spot mark, Side side, std::string_view text);

} // namespace orbelantine::phone
