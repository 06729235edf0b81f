#include "tools/virtual_phone/picture/ScreenDrawing.h"

#include "tools/virtual_phone/picture/TextLines.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace orbelantine::phone {

namespace {

constexpr double kLongestSide = 800;
constexpr double kTextMargin = 16;
constexpr double kStatusBar = 44;
constexpr double kCorner = 30;
constexpr int kColourSteps = 40;

struct Colour {
    double red, green, blue;
};

constexpr Colour kPathColours[] = {{13, 148, 136}, {79, 70, 229}, {192, 38, 211}};

double mix(double from, double to, double part) {
    return std::round(from + (to - from) * part);
}

std::string inHex(const Colour& colour) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text = "#";
    for (const double part : {colour.red, colour.green, colour.blue}) {
        const auto value = static_cast<unsigned>(part);
        text += kDigits[value >> 4];
        text += kDigits[value & 0x0F];
    }
    return text;
}

/// Pixels of the phone to places in the picture.
class Scale {
  public:
    explicit Scale(Screen screen)
        : mFactor(drawnSize(screen).width / screen.width) {}

    [[nodiscard]] Spot operator()(Point point) const {
        return {(point.x + 0.5) * mFactor, (point.y + 0.5) * mFactor};
    }

  private:
    double mFactor;
};

std::string pair(Spot spot) {
    return svgNumber(spot.x) + "," + svgNumber(spot.y) + " ";
}

struct Pen {
    const char* width;
    const char* opacity;
    const char* dashes;
};

Pen penOf(Stroke stroke) {
    switch (stroke) {
    case Stroke::Drag:
        return {"5.5", "1", "none"};
    case Stroke::Sweep:
        return {"1.2", "0.45", "2 5"};
    case Stroke::Move:
        break;
    }
    return {"2.2", "0.9", "none"};
}

void drawLine(SvgWriter& svg, const std::string& points, Stroke stroke, double at) {
    const Pen pen = penOf(stroke);
    svg.leaf("polyline", {{"points", points},
                          {"fill", "none"},
                          {"stroke", stroke == Stroke::Sweep ? look::kFaint : pathColour(at)},
                          {"stroke-width", pen.width},
                          {"stroke-opacity", pen.opacity},
                          {"stroke-dasharray", pen.dashes},
                          {"stroke-linecap", "round"},
                          {"stroke-linejoin", "round"}});
}

/// One line for each stretch of equal stroke and colour.
void drawPath(SvgWriter& svg, const Trace& trace, const Scale& scale) {
    const std::vector<Step>& steps = trace.steps();
    const auto colourStep = [&](std::size_t i) { return i * kColourSteps / steps.size(); };
    std::string points = pair(scale(trace.start()));
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const std::string place = pair(scale(steps[i].to));
        points += place;
        const bool ends = i + 1 == steps.size() || steps[i + 1].stroke != steps[i].stroke ||
                          colourStep(i + 1) != colourStep(i);
        if (!ends)
            continue;
        drawLine(svg, points, steps[i].stroke, static_cast<double>(colourStep(i)) / kColourSteps);
        points = place;
    }
}

std::string labelOf(const Mark& mark) {
    if (mark.kind == MarkKind::Scroll)
        return (mark.amount > 0 ? "+" : "") + std::to_string(mark.amount);
    return mark.count == 1 ? "" : "\u00d7" + std::to_string(mark.count);
}

/// Marks at one place stand in a column, away from the nearer of the upper and the lower edge.
class Places {
  public:
    explicit Places(const Phone& phone)
        : mScale(phone.screen())
        , mHeight(phone.screen().height) {}

    Spot next(Point at) {
        constexpr double kStep = 26;
        mInColumn = mLast == at ? mInColumn + 1 : 0;
        mLast = at;
        Spot spot = mScale(at);
        spot.y += mInColumn * (at.y > mHeight / 2 ? -kStep : kStep);
        return spot;
    }

  private:
    Scale mScale;
    int mHeight;
    Point mLast{-1, -1};
    int mInColumn = 0;
};

void drawMarks(SvgWriter& svg, const Phone& phone) {
    Places places(phone);
    for (const Mark& mark : phone.trace().marks()) {
        const Spot spot = places.next(mark.at);
        drawMark(svg, mark.kind, spot);
        const bool nearRightEdge = mark.at.x > phone.screen().width * 4 / 5;
        if (const std::string label = labelOf(mark); !label.empty())
            drawLabel(svg, spot, nearRightEdge ? Side::Left : Side::Right, label);
    }
}

/// Over the marks, so that a hit does not cover its target.
void drawAims(SvgWriter& svg, const Trace& trace, const Scale& scale) {
    for (const Aim& aim : trace.aims()) {
        drawTarget(svg, scale(aim.target));
        if (aim.hit)
            drawMiss(svg, scale(aim.target), scale(*aim.hit));
    }
}

void drawLineOfText(SvgWriter& svg, const TextLine& line, double x, double y) {
    svg.open("text", {{"x", x},
                      {"y", y},
                      {"font-family", look::kMono},
                      {"font-size", 14},
                      {"fill", look::kInk},
                      {"xml:space", "preserve"}});
    if (line.caret)
        svg.content(line.text.substr(0, *line.caret))
            .text("tspan", {{"fill", "#2563eb"}, {"font-weight", "700"}}, "|")
            .content(line.text.substr(*line.caret));
    else
        svg.content(line.text);
    svg.close();
}

void drawTextField(SvgWriter& svg, const TextField& field, DrawnSize size) {
    constexpr double kLineHeight = 20;
    constexpr double kCharacterWidth = 8.6;
    constexpr double kPadding = 14;
    const double width = size.width - 2 * kTextMargin;
    const double columns = (width - 2 * kPadding) / kCharacterWidth - 1;
    if (columns < 1)
        return;
    const double lines = std::clamp(size.height * 0.35 / kLineHeight, 1.0, 10.0);
    const std::vector<TextLine> shown =
        visibleLines(field.text(), field.caret(),
                     {static_cast<std::size_t>(columns), static_cast<std::size_t>(lines)});
    const double height = kLineHeight * static_cast<double>(shown.size()) + 2 * kPadding - 4;
    svg.leaf("rect", {{"x", kTextMargin},
                      {"y", kStatusBar},
                      {"width", width},
                      {"height", height},
                      {"rx", 14},
                      {"fill", "#ffffff"},
                      {"stroke", "#2563eb"},
                      {"stroke-opacity", "0.45"},
                      {"stroke-width", 1.5}});
    double y = kStatusBar + kPadding + kLineHeight * 0.6;
    for (const TextLine& line : shown) {
        drawLineOfText(svg, line, kTextMargin + kPadding, y);
        y += kLineHeight;
    }
}

void drawGlass(SvgWriter& svg, DrawnSize size) {
    svg.leaf(
        "rect",
        {{"width", size.width}, {"height", size.height}, {"rx", kCorner}, {"fill", "url(#glass)"}});
    // Front camera above, gesture bar below.
    svg.leaf("circle", {{"cx", size.width / 2}, {"cy", 20}, {"r", 7}, {"fill", "#11131c"}});
    svg.leaf("rect", {{"x", size.width * 0.36},
                      {"y", size.height - 12},
                      {"width", size.width * 0.28},
                      {"height", 4},
                      {"rx", 2},
                      {"fill", look::kFaint},
                      {"fill-opacity", "0.6"}});
}

} // namespace

DrawnSize drawnSize(Screen screen) {
    const double factor = kLongestSide / std::max(screen.width, screen.height);
    return {screen.width * factor, screen.height * factor};
}

std::string pathColour(double at) {
    const double place = std::clamp(at, 0.0, 1.0) * 2;
    const std::size_t first = place < 1 ? 0 : 1;
    const double part = place - static_cast<double>(first);
    const Colour& from = kPathColours[first];
    const Colour& to = kPathColours[first + 1];
    return inHex({mix(from.red, to.red, part), mix(from.green, to.green, part),
                  mix(from.blue, to.blue, part)});
}

void drawScreen(SvgWriter& svg, const Phone& phone) {
    const DrawnSize size = drawnSize(phone.screen());
    const Scale scale(phone.screen());
    drawGlass(svg, size);
    drawTextField(svg, phone.textField(), size);
    svg.open("clipPath", {{"id", "screen"}})
        .leaf("rect", {{"width", size.width}, {"height", size.height}, {"rx", kCorner}})
        .close();
    svg.open("g", {{"clip-path", "url(#screen)"}});
    drawPath(svg, phone.trace(), scale);
    svg.close();
    drawStart(svg, scale(phone.trace().start()));
    drawMarks(svg, phone);
    drawAims(svg, phone.trace(), scale);
    drawCursor(svg, scale(phone.cursor()));
}

} // namespace orbelantine::phone
