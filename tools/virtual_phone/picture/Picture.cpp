#include "tools/virtual_phone/picture/Picture.h"

#include "tools/virtual_phone/log/Utf8.h"
#include "tools/virtual_phone/phone/KeyNames.h"
#include "tools/virtual_phone/picture/Markers.h"
#include "tools/virtual_phone/picture/ScreenDrawing.h"
#include "tools/virtual_phone/picture/Svg.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace orbelantine::phone {

namespace {

constexpr double kMargin = 40;
/// Of the phone's body around its screen.
constexpr double kBezel = 14;
constexpr double kPanelWidth = 270;
constexpr double kPanelHeight = 668;
constexpr const char* kPathStops[] = {"0", "0.5", "1"};

struct Layout {
    DrawnSize screen;
    DrawnSize body;
    double panelX;
    double width;
    double height;
    double bodyY;

    explicit Layout(Screen size)
        : screen(drawnSize(size))
        , body{screen.width + 2 * kBezel, screen.height + 2 * kBezel}
        , panelX(kMargin + body.width + kMargin)
        , width(panelX + kPanelWidth + kMargin)
        , height(std::max(body.height, kPanelHeight) + 2 * kMargin)
        , bodyY((height - body.height) / 2) {}
};

void defineGradient(SvgWriter& svg, const char* id, const char* x2, const char* y2,
                    const std::vector<std::string>& colours) {
    svg.open("linearGradient", {{"id", id}, {"x1", "0"}, {"y1", "0"}, {"x2", x2}, {"y2", y2}});
    for (std::size_t i = 0; i < colours.size(); ++i)
        svg.leaf("stop", {{"offset", colours.size() == 2 ? kPathStops[2 * i] : kPathStops[i]},
                          {"stop-color", colours[i]}});
    svg.close();
}

void drawDefinitions(SvgWriter& svg) {
    svg.open("defs", {});
    defineGradient(svg, "desk", "0", "1", {"#f4f5fb", "#e3e6f2"});
    defineGradient(svg, "body", "1", "1", {"#343a4d", "#12141d"});
    defineGradient(svg, "glass", "0.4", "1", {"#f6f8ff", "#e2e7fb"});
    defineGradient(svg, "path", "1", "0", {pathColour(0), pathColour(0.5), pathColour(1)});
    defineMarkers(svg);
    svg.close();
}

void drawPhone(SvgWriter& svg, const Phone& phone, const Layout& layout) {
    const auto [width, height] = layout.body;
    const double top = layout.bodyY;
    const auto part = [&](double x, double y, double w, double h, double rx, const char* fill) {
        svg.leaf("rect",
                 {{"x", x}, {"y", y}, {"width", w}, {"height", h}, {"rx", rx}, {"fill", fill}});
    };
    // Its shadow, the two keys at its side, then the body over them.
    svg.open("g", {{"fill-opacity", "0.10"}});
    part(kMargin + 4, top + 12, width, height, 46, "#0b1030");
    svg.close();
    part(kMargin + width - 4, top + height * 0.18, 8, height * 0.11, 3, "#12141d");
    part(kMargin + width - 4, top + height * 0.33, 8, height * 0.06, 3, "#12141d");
    part(kMargin, top, width, height, 44, "url(#body)");
    const std::string corner = svgNumber(kMargin + kBezel) + " " + svgNumber(top + kBezel);
    svg.open("g", {{"transform", "translate(" + corner + ")"}});
    drawScreen(svg, phone);
    svg.close();
}

/// The column beside the phone, filled from the top.
class Panel {
  public:
    Panel(SvgWriter& svg, double x)
        : mSvg(svg)
        , mX(x) {}

    /// Shown in full while it fits, then smaller, then cut.
    void title(std::string_view text) {
        constexpr std::size_t kLarge = 18;
        constexpr std::size_t kSmall = 26;
        const std::u32string characters = decodeUtf8(text);
        std::string shown;
        for (const char32_t c : characters.substr(0, kSmall))
            appendUtf8(shown, c);
        if (characters.size() > kSmall)
            shown += "\u2026";
        mY += 24;
        const double size = characters.size() > kLarge ? 15 : 22;
        write(shown, mX, {.size = size, .weight = "700", .colour = look::kInk});
    }

    void subtitle(std::string_view text) {
        mY += 20;
        write(text, mX, {.size = 12.5, .weight = "400", .colour = look::kFaint});
    }

    void heading(std::string_view text) {
        mY += 26;
        mSvg.leaf("line", {{"x1", mX},
                           {"y1", mY},
                           {"x2", mX + kPanelWidth},
                           {"y2", mY},
                           {"stroke", look::kFaint},
                           {"stroke-opacity", "0.3"}});
        mY += 22;
        write(text, mX, {.size = 12.5, .weight = "700", .colour = look::kFaint});
    }

    void count(std::string_view what, const std::string& value, const char* colour = look::kInk) {
        mY += 22;
        write(what, mX, {.size = 14, .weight = "400", .colour = look::kInk});
        write(value, mX + kPanelWidth,
              {.size = 14, .weight = "700", .colour = colour, .anchor = "end"});
    }

    /// `draw` draws the sign around the middle of a space of 44 by 28.
    void sign(std::string_view meaning, const std::function<void(SvgWriter&, Spot)>& draw) {
        mY += 28;
        draw(mSvg, {mX + 22, mY - 5});
        write(meaning, mX + 58, {.size = 14, .weight = "400", .colour = look::kInk});
    }

  private:
    struct Font {
        double size;
        const char* weight;
        const char* colour;
        const char* anchor = "start";
    };

    void write(std::string_view text, double x, const Font& font) {
        mSvg.text("text",
                  {{"x", x},
                   {"y", mY},
                   {"font-family", look::kSans},
                   {"font-size", font.size},
                   {"font-weight", font.weight},
                   {"text-anchor", font.anchor},
                   {"fill", font.colour}},
                  text);
    }

    SvgWriter& mSvg;
    double mX;
    double mY = kMargin;
};

std::string clicksText(const Tally& tally) {
    std::string text;
    for (const std::uint64_t count : tally.clicks)
        text += (text.empty() ? "" : " / ") + std::to_string(count);
    return text;
}

template <typename Counts>
std::uint64_t sumOf(const Counts& counts) {
    std::uint64_t sum = 0;
    for (const auto& [code, count] : counts)
        sum += count;
    return sum;
}

void drawCounts(Panel& panel, const Tally& tally) {
    const std::uint64_t special = sumOf(tally.consumerPresses) + sumOf(tally.systemPresses);
    panel.heading("RECEIVED");
    panel.count("Reports", std::to_string(tally.reports));
    panel.count("Moves", std::to_string(tally.moves));
    panel.count("Clicks, left / right / middle", clicksText(tally));
    panel.count("Scrolls", std::to_string(tally.scrolls));
    panel.count("Scrolled in all", std::to_string(tally.scrollAmount));
    panel.count("Key presses", std::to_string(tally.keyPresses));
    panel.count("Consumer and system keys", std::to_string(special));
    panel.count("Errors", std::to_string(tally.errors), tally.errors == 0 ? look::kInk : "#dc2626");
}

void drawSampleLine(SvgWriter& svg, Spot middle, const char* width, const char* stroke,
                    const char* dashes) {
    // A little slope, as a gradient is not drawn on a box without height.
    const std::string line = "M" + svgNumber(middle.x - 20) + " " + svgNumber(middle.y + 3) + "L" +
                             svgNumber(middle.x + 20) + " " + svgNumber(middle.y - 3);
    svg.leaf("path", {{"d", line},
                      {"fill", "none"},
                      {"stroke", stroke},
                      {"stroke-width", width},
                      {"stroke-dasharray", dashes},
                      {"stroke-linecap", "round"}});
}

void drawLegend(Panel& panel) {
    const auto line = [](const char* width, const char* stroke, const char* dashes) {
        return [=](SvgWriter& svg, Spot at) { drawSampleLine(svg, at, width, stroke, dashes); };
    };
    const auto mark = [](MarkKind kind) {
        return [=](SvgWriter& svg, Spot at) { drawMark(svg, kind, at); };
    };
    panel.heading("LEGEND");
    panel.sign("cursor's path, early to late", line("2.2", "url(#path)", "none"));
    panel.sign("with a button held", line("6", "url(#path)", "none"));
    panel.sign("swept to an edge", line("1.2", look::kFaint, "2 5"));
    panel.sign("left click", mark(MarkKind::Left));
    panel.sign("right click", mark(MarkKind::Right));
    panel.sign("middle click", mark(MarkKind::Middle));
    panel.sign("scroll, with its amount", mark(MarkKind::Scroll));
    panel.sign("target, with a line to its click", [](SvgWriter& svg, Spot at) {
        drawTarget(svg, {at.x - 8, at.y});
        drawMiss(svg, {at.x - 8, at.y}, {at.x + 12, at.y - 4});
    });
    panel.sign("start of the path", drawStart);
    panel.sign("cursor", [](SvgWriter& svg, Spot at) { drawCursor(svg, {at.x - 5, at.y - 9}); });
}

} // namespace

std::string drawPicture(std::string_view name, std::string_view address, const Phone& phone) {
    const Layout layout(phone.screen());
    const std::string size = svgNumber(layout.width) + " " + svgNumber(layout.height);
    SvgWriter svg;
    svg.open("svg", {{"xmlns", "http://www.w3.org/2000/svg"},
                     {"viewBox", "0 0 " + size},
                     {"width", layout.width},
                     {"height", layout.height}});
    svg.text("title", {}, name);
    drawDefinitions(svg);
    svg.leaf("rect", {{"width", "100%"}, {"height", "100%"}, {"fill", "url(#desk)"}});
    drawPhone(svg, phone, layout);

    Panel panel(svg, layout.panelX);
    panel.title(name);
    panel.subtitle(address);
    panel.subtitle(std::to_string(phone.screen().width) + " \u00d7 " +
                   std::to_string(phone.screen().height) + " pixels");
    drawCounts(panel, phone.tally());
    drawLegend(panel);
    return svg.finish();
}

} // namespace orbelantine::phone
