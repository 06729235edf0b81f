#include "tools/virtual_phone/picture/Picture.h"

#include "tools/virtual_phone/picture/Svg.h"

#include <boost/property_tree/xml_parser.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace orbelantine::phone {

namespace {

using boost::property_tree::ptree;
using Bytes = std::vector<std::uint8_t>;

/// Fails the test on a document that isn't well-formed.
ptree parsed(const std::string& document) {
    std::istringstream in(document);
    ptree tree;
    EXPECT_NO_THROW(boost::property_tree::read_xml(in, tree)) << document;
    return tree;
}

std::size_t count(const std::string& document, const std::string& part) {
    std::size_t found = 0;
    for (std::size_t at = document.find(part); at != std::string::npos;
         at = document.find(part, at + 1))
        ++found;
    return found;
}

class PictureTest : public testing::Test {
  protected:
    void report(const Bytes& bytes) { mPhone.receive(Channel::Interrupt, bytes); }

    /// How often the picture has each sign, the legend's own included.
    std::vector<std::size_t> signs() const {
        std::vector<std::size_t> counts;
        for (const char* mark : {"left", "right", "middle", "scroll"})
            counts.push_back(count(draw(), std::string("href=\"#mark-") + mark + "\""));
        return counts;
    }

    std::string draw(std::string_view name = "Phone") const {
        return drawPicture(name, "00:11:22:33:44:55", mPhone);
    }

    EventLog mLog{nullptr, nullptr};
    Phone mPhone{{1080, 2340}, mLog};
};

} // namespace

TEST_F(PictureTest, EveryClickAndScrollHasItsSign) {
    using Counts = std::vector<std::size_t>;
    EXPECT_EQ(signs(), (Counts{1, 1, 1, 1}));
    EXPECT_EQ(count(draw(), "<polyline"), 0U);
    for (const std::uint8_t button : {1, 2, 4}) {
        report({0xA1, 1, button, 0, 0, 0, 0, 0, 0});
        report({0xA1, 1, 0, 9, 0, 0, 0, 0, 0});
    }
    report({0xA1, 1, 0, 0, 0, 0, 0, 2, 0});
    EXPECT_EQ(signs(), (Counts{2, 2, 2, 2}));
    EXPECT_EQ(count(draw(), ">+2</text>"), 1U);
    parsed(draw());
}

TEST_F(PictureTest, PathAndTargetsLineEndAtTheClick) {
    const std::string ring = R"(r="4" fill="#ffffff" stroke="#dc2626")";
    EXPECT_EQ(count(draw(), ring), 1U) << "the legend's";
    mPhone.setTarget({540, 1170});
    mPhone.setTarget({0, 0});
    report({0xA1, 1, 1, 27, 0, 0, 0, 0, 0});
    const std::string document = draw();
    parsed(document);
    EXPECT_EQ(count(document, ring), 3U);
    // The middle of 1080 x 2340 pixels on a screen of 369.2 x 800, and 27 pixels to the right.
    EXPECT_EQ(count(document, R"(x1="184.8" y1="400.2" x2="194" y2="400.2")"), 1U);
    EXPECT_EQ(count(document, R"(points="184.8,400.2 194,400.2 ")"), 1U);
    EXPECT_EQ(svgNumber(-0.01), "0");
}

TEST_F(PictureTest, TypedMarkupAndAHostileNameAreText) {
    for (const std::uint8_t usage : {54, 36, 52, 55}) // < & " >
        report({0xA1, 2, 0x02, 0, usage, 0, 0, 0, 0, 0});
    const std::string document = draw("</text><script>\"'&\x01\x1b]]>\xff\xfe\xc3\xef\xbf\xbf --");
    EXPECT_EQ(count(document, "&lt;&amp;&quot;&gt;<tspan"), 1U);
    EXPECT_EQ(count(document, "<script"), 0U);
    EXPECT_TRUE(
        std::ranges::none_of(document, [](char c) { return c >= 0 && c < ' ' && c != '\n'; }));
    EXPECT_EQ(count(document, "\xef\xbf\xbf"), 0U) << "U+FFFF is no XML character";
    EXPECT_TRUE(
        parsed(document).get<std::string>("svg.title").starts_with("</text><script>\"'&\ufffd"));
}

TEST_F(PictureTest, NarrowScreensDrawWithoutATextField) {
    for (const Screen screen : {Screen{100, 10'000}, Screen{10'000, 100}})
        parsed(drawPicture("Narrow", "", Phone(screen, mLog)));
}

} // namespace orbelantine::phone
