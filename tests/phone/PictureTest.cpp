#include "tools/virtual_phone/Picture.h"

#include "tools/virtual_phone/Svg.h"

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

/// Elements of this name in which `holds` is true, at any depth.
template <typename Predicate>
std::size_t countElements(const ptree& tree, const std::string& name, Predicate holds) {
    std::size_t count = 0;
    for (const auto& [childName, child] : tree)
        count += (childName == name && holds(child) ? 1U : 0U) + countElements(child, name, holds);
    return count;
}

std::size_t countUses(const ptree& tree, const std::string& reference) {
    return countElements(tree, "use", [&](const ptree& element) {
        return element.get<std::string>("<xmlattr>.href") == reference;
    });
}

class PictureTest : public testing::Test {
  protected:
    void report(const Bytes& bytes) { mPhone.receive(Channel::Interrupt, bytes); }

    void type(std::uint8_t usage, std::uint8_t modifiers = 0) {
        report({0xA1, 2, modifiers, 0, usage, 0, 0, 0, 0, 0});
        report({0xA1, 2, 0, 0, 0, 0, 0, 0, 0, 0});
    }

    std::string draw(std::string_view name = "Phone") const {
        return drawPicture(name, "00:11:22:33:44:55", mPhone);
    }

    EventLog mLog{nullptr, nullptr};
    Phone mPhone{{1080, 2340}, mLog};
};

} // namespace

TEST_F(PictureTest, QuietSessionShowsTheLegendsSignsOnly) {
    const ptree tree = parsed(draw());
    for (const char* mark : {"#mark-left", "#mark-right", "#mark-middle", "#mark-scroll"})
        EXPECT_EQ(countUses(tree, mark), 1U) << mark;
    EXPECT_EQ(countElements(tree, "polyline", [](const ptree&) { return true; }), 0U);
}

TEST_F(PictureTest, EveryClickAndScrollHasItsSign) {
    for (const std::uint8_t button : {1, 2, 4}) {
        report({0xA1, 1, button, 0, 0, 0, 0, 0, 0});
        report({0xA1, 1, 0, 9, 0, 0, 0, 0, 0});
    }
    report({0xA1, 1, 0, 0, 0, 0, 0, 2, 0});
    const ptree tree = parsed(draw());
    for (const char* mark : {"#mark-left", "#mark-right", "#mark-middle", "#mark-scroll"})
        EXPECT_EQ(countUses(tree, mark), 2U) << mark;
    EXPECT_EQ(countElements(tree, "text", [](const ptree& text) { return text.data() == "+2"; }),
              1U);
}

TEST_F(PictureTest, TargetsHaveALineToTheirClick) {
    const auto rings = [this] {
        return countElements(parsed(draw()), "circle", [](const ptree& circle) {
            return circle.get<std::string>("<xmlattr>.stroke", "") == "#dc2626";
        });
    };
    EXPECT_EQ(rings(), 1U) << "the legend's";
    mPhone.setTarget({540, 1170});
    mPhone.setTarget({0, 0});
    EXPECT_EQ(rings(), 3U);
    report({0xA1, 1, 1, 27, 0, 0, 0, 0, 0});
    EXPECT_NE(draw().find(R"(x1="184.8" y1="400.2" x2="194" y2="400.2")"), std::string::npos);
}

TEST_F(PictureTest, PathIsDrawnFromTheStartToTheCursor) {
    report({0xA1, 1, 0, 27, 0, 0, 0, 0, 0});
    const std::string document = draw();
    parsed(document);
    // The middle of 1080 x 2340 pixels on a screen of 369.2 x 800, and 27 pixels to the right.
    EXPECT_NE(document.find("points=\"184.8,400.2 194,400.2 \""), std::string::npos);
}

TEST_F(PictureTest, TypedMarkupIsText) {
    type(54, 0x02); // <
    type(36, 0x02); // &
    type(52, 0x02); // "
    type(55, 0x02); // >
    const std::string document = draw();
    parsed(document);
    EXPECT_NE(document.find("&lt;&amp;&quot;&gt;<tspan"), std::string::npos);
}

TEST_F(PictureTest, HostileNameLeavesTheDocumentWellFormed) {
    const std::string name = "</text><script>\"'&\x01\x1b]]>\xff\xfe\xc3\xef\xbf\xbf --";
    const std::string document = draw(name);
    const ptree tree = parsed(document);
    EXPECT_EQ(document.find("<script"), std::string::npos);
    EXPECT_TRUE(
        std::ranges::none_of(document, [](char c) { return c >= 0 && c < ' ' && c != '\n'; }));
    EXPECT_EQ(document.find("\xef\xbf\xbf"), std::string::npos) << "U+FFFF is no XML character";
    EXPECT_TRUE(tree.get<std::string>("svg.title").starts_with("</text><script>\"'&\ufffd"));
}

TEST_F(PictureTest, NarrowScreensDrawWithoutATextField) {
    for (const Screen screen : {Screen{100, 10'000}, Screen{10'000, 100}}) {
        const Phone narrow(screen, mLog);
        parsed(drawPicture("Narrow", "", narrow));
    }
}

TEST(SvgNumber, HasAtMostOneDigitBehindThePoint) {
    EXPECT_EQ(svgNumber(12), "12");
    EXPECT_EQ(svgNumber(0.25), "0.3");
    EXPECT_EQ(svgNumber(-0.01), "0");
    EXPECT_EQ(svgNumber(-1.5), "-1.5");
}

} // namespace orbelantine::phone
