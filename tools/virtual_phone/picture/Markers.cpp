#include "tools/virtual_phone/picture/Markers.h"

#include <cstddef>

namespace orbelantine::phone {

namespace {

struct Shape {
    const char* id;
    const char* reference;
    const char* colour;
    /// Around the mark's place, 18 units wide.
    const char* outline;
    /// Drawn in white upon it.
    const char* detail;
};

/// In the order of MarkKind.
constexpr Shape kShapes[] = {
    {"mark-left", "#mark-left", "#2563eb", "M-9 0A9 9 0 1 1 9 0A9 9 0 1 1 -9 0Z",
     "M-3 0A3 3 0 1 1 3 0A3 3 0 1 1 -3 0Z"},
    {"mark-right", "#mark-right", "#ea580c", "M0 -11L11 0L0 11L-11 0Z", "M0 -4L4 0L0 4L-4 0Z"},
    {"mark-middle", "#mark-middle", "#15803d", "M0 -11L10.5 8L-10.5 8Z", "M0 -3L3.6 4L-3.6 4Z"},
    {"mark-scroll", "#mark-scroll", "#7c3aed", "M-7 -7A7 7 0 0 1 7 -7L7 7A7 7 0 0 1 -7 7Z",
     "M0 -9L4 -3L-4 -3ZM0 9L4 3L-4 3Z"},
};

constexpr const char* kTargetColour = "#dc2626";
constexpr const char* kPointer = "M0 0L0 18L4.2 14.2L7 20.6L10 19.3L7.2 13L12.8 12.6Z";

const Shape& shapeOf(MarkKind kind) {
    return kShapes[static_cast<std::size_t>(kind)];
}

} // namespace

void defineMarkers(SvgWriter& svg) {
    for (const Shape& shape : kShapes) {
        svg.open("g", {{"id", shape.id}})
            .leaf("path", {{"d", shape.outline},
                           {"fill", shape.colour},
                           {"fill-opacity", "0.92"},
                           {"stroke", "#ffffff"},
                           {"stroke-width", 2}})
            .leaf("path", {{"d", shape.detail}, {"fill", "#ffffff"}})
            .close();
    }
}

void drawMark(SvgWriter& svg, MarkKind kind, Spot at) {
    svg.leaf("use", {{"href", shapeOf(kind).reference}, {"x", at.x}, {"y", at.y}});
}

void drawCursor(SvgWriter& svg, Spot at) {
    const std::string place = "translate(" + svgNumber(at.x) + " " + svgNumber(at.y) + ")";
    svg.leaf("path", {{"d", kPointer},
                      {"transform", place},
                      {"fill", look::kInk},
                      {"stroke", "#ffffff"},
                      {"stroke-width", 1.6},
                      {"stroke-linejoin", "round"}});
}

void drawStart(SvgWriter& svg, Spot at) {
    svg.leaf("circle", {{"cx", at.x},
                        {"cy", at.y},
                        {"r", 5},
                        {"fill", "#ffffff"},
                        {"stroke", "#0d9488"},
                        {"stroke-width", 2.5}});
}

void drawTarget(SvgWriter& svg, Spot at) {
    svg.leaf("circle", {{"cx", at.x},
                        {"cy", at.y},
                        {"r", 4},
                        {"fill", "#ffffff"},
                        {"stroke", kTargetColour},
                        {"stroke-width", 2}});
}

void drawMiss(SvgWriter& svg, Spot target, Spot hit) {
    svg.leaf("line", {{"x1", target.x},
                      {"y1", target.y},
                      {"x2", hit.x},
                      {"y2", hit.y},
                      {"stroke", kTargetColour},
                      {"stroke-width", 1}});
}

void drawLabel(SvgWriter& svg, Spot mark, Side side, std::string_view text) {
    constexpr double kGap = 14;
    const bool right = side == Side::Right;
    svg.text("text",
             {{"x", mark.x + (right ? kGap : -kGap)},
              {"y", mark.y + 4},
              {"text-anchor", right ? "start" : "end"},
              {"font-family", look::kSans},
              {"font-size", 12},
              {"font-weight", "700"},
              {"fill", look::kInk},
              {"stroke", "#ffffff"},
              {"stroke-width", 3},
              {"paint-order", "stroke"}},
             text);
}

} // namespace orbelantine::phone
