#include "tools/virtual_phone/phone/Phone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

namespace orbelantine::phone {

namespace {

using Bytes = std::vector<std::uint8_t>;
using Lines = std::vector<std::string>;

std::uint8_t low(int value) {
    return static_cast<std::uint8_t>(value & 0xFF);
}

std::uint8_t high(int value) {
    return low(value >> 8);
}

Bytes mouse(std::uint8_t buttons, int dx, int dy, int wheel = 0) {
    return {0xA1, 1, buttons, low(dx), high(dx), low(dy), high(dy), low(wheel), high(wheel)};
}

Bytes keyboard(std::uint8_t modifiers, std::initializer_list<std::uint8_t> keys) {
    Bytes bytes(10);
    bytes[0] = 0xA1;
    bytes[1] = 2;
    bytes[2] = modifiers;
    std::ranges::copy(keys, bytes.begin() + 4);
    return bytes;
}

Bytes absoluteMouse(int x, int y, std::uint8_t tip) {
    return {0xA1, 3, 0x21, low(x), high(x), low(y), high(y), tip, 0};
}

class PhoneTest : public testing::Test {
  protected:
    void report(const Bytes& bytes) { mPhone.receive(Channel::Interrupt, bytes); }

    /// The lines logged since the last call, without the time.
    Lines logged() {
        const std::string time = R"("t_ms":7,)";
        Lines lines;
        std::istringstream text(mText.str());
        mText.str("");
        for (std::string line; std::getline(text, line);) {
            EXPECT_EQ(line.find(time), 1U) << line;
            lines.push_back(line.erase(1, time.size()));
        }
        return lines;
    }

    std::ostringstream mText;
    EventLog mLog{&mText, [] { return std::chrono::milliseconds(7); }};
    Phone mPhone{{200, 400}, mLog};
};

} // namespace

TEST_F(PhoneTest, EachReportIsLoggedWithWhatCameOfIt) {
    const std::string begin = R"({"channel":"interrupt","event":)";

    const struct {
        Bytes report;
        std::string line;
        Lines buttons = {};
    } cases[] = {
        {mouse(0, 5, -300, 0), R"("mouse","buttons":0,"x":105,"y":0,"dx":5,"dy":-300,"wheel":0})"},
        {mouse(1, 5, 0, -2),
         R"("mouse","buttons":1,"x":110,"y":0,"dx":5,"dy":0,"wheel":-2})",
         {R"({"event":"press","button":"left","x":110,"y":0})"}},
        {mouse(4, 0, 1),
         R"("mouse","buttons":4,"x":110,"y":1,"dx":0,"dy":1,"wheel":0})",
         {R"({"event":"release","button":"left","x":110,"y":1})",
          R"({"event":"press","button":"middle","x":110,"y":1})"}},
        {mouse(4, 0, 0), R"("mouse","buttons":4,"x":110,"y":1,"dx":0,"dy":0,"wheel":0})"},
        {absoluteMouse(65535, 65535, 0),
         R"("absolute_mouse","buttons":4,"x":199,"y":399,"tip":false,"absolute_x":65535,)"
         R"("absolute_y":65535})"},
        {absoluteMouse(65535, 65535, 1),
         R"("absolute_mouse","buttons":5,"x":199,"y":399,"tip":true,"absolute_x":65535,)"
         R"("absolute_y":65535})",
         {R"({"event":"press","button":"left","x":199,"y":399})"}},
        {{0xA1, 3, 0, 0, 0, 0, 0, 0, 0, 0x80, 0, 0, 0xFF, 0x0F, 0xFF, 0x0F, 0, 0, 9, 0, 1},
         R"("digitizer","buttons":4,"x":0,"y":200,"tip":false,"absolute_x":0,"absolute_y":32768,)"
         R"("scan_counter":9})",
         {R"({"event":"release","button":"left","x":0,"y":200})"}},
        {keyboard(2, {225, 11}),
         R"("keyboard","modifiers":2,"keys":[225,11,0,0,0,0],"pressed":[225,11],"released":[],)"
         R"("typed":"H","caps_lock":false})"},
        {keyboard(0, {12, 12, 11}),
         R"("keyboard","modifiers":0,"keys":[12,12,11,0,0,0],"pressed":[12],"released":[225],)"
         R"("typed":"i","caps_lock":false})"},
        {{0xA1, 4, 0x23, 0x02, 0, 0}, R"("consumer","report_id":4,"usage":547,"name":"home"})"},
        {{0xA1, 6, 130}, R"("system","code":130,"name":"sleep"})"},
        {{0x15},
         R"("error","what":"a report is shorter than its two header bytes","size":1,)"
         R"("bytes":"15"})"},
    };

    for (const auto& [bytes, line, buttons] : cases) {
        Lines lines = {begin + line};
        lines.insert(lines.end(), buttons.begin(), buttons.end());
        report(bytes);
        EXPECT_EQ(logged(), lines);
    }
    EXPECT_EQ(mPhone.tally().moves, 5U);
    EXPECT_EQ(mPhone.tally().keyPresses, 3U);
    EXPECT_EQ(mPhone.textField().text(), "Hi");
}

TEST_F(PhoneTest, LargestDeltasEndInTheCorners) {
    report(mouse(0, 32767, 32767));
    report(mouse(0, -32768, -32768));
    EXPECT_EQ(mPhone.trace().steps(),
              (std::vector<Step>{{{199, 399}, Stroke::Sweep}, {{0, 0}, Stroke::Sweep}}));
}

TEST_F(PhoneTest, ClicksHitTheTargetsInTheirOrder) {
    mPhone.setTarget({100, 200});
    mPhone.setTarget({150, 250});
    EXPECT_EQ(logged().back(), R"({"event":"target","x":150,"y":250})");
    report(mouse(1, 1, 2));
    report(mouse(0, 0, 0));
    EXPECT_EQ(mPhone.trace().aims(),
              (std::vector<Aim>{{{100, 200}, Point{101, 202}}, {{150, 250}, std::nullopt}}));
}

TEST_F(PhoneTest, NewScreenIsDrawnAnewAndKeepsTheCursor) {
    report(mouse(1, 60, 0));
    mPhone.setScreen({400, 150, 2.5, 4});
    EXPECT_EQ(logged().back(), R"({"event":"screen","screen":[400,150],"scale":2.5,"rotation":4})");
    EXPECT_EQ(mPhone.cursor(), (Point{160, 149}));
    EXPECT_TRUE(mPhone.trace().steps().empty());
    EXPECT_EQ(mPhone.tally().clicks[0], 1U);
}

TEST_F(PhoneTest, TraceTellsDragsAndScrollsByPlaceAndButtonsCountOncePerPress) {
    report(mouse(1, 0, 0));
    report(mouse(1, 10, 0));
    report(mouse(0, 0, 0));
    report(mouse(0, 0, 0, 3));
    report(mouse(0, 0, 0, -1));
    EXPECT_EQ(mPhone.trace().steps(), (std::vector<Step>{{{110, 200}, Stroke::Drag}}));
    EXPECT_EQ(mPhone.trace().marks(), (std::vector<Mark>{{MarkKind::Left, {100, 200}, 1, 0},
                                                         {MarkKind::Scroll, {110, 200}, 2, 2}}));
    for (const std::uint8_t buttons : {2, 3, 0, 2, 6, 0})
        report(mouse(buttons, 0, 0));
    EXPECT_EQ(mPhone.tally().clicks, (std::array<std::uint64_t, 3>{2, 2, 1}));
}

TEST_F(PhoneTest, TraceOfALongSessionKeepsItsLatestPart) {
    for (int i = 0; i < 60'000; ++i)
        report(mouse(i % 2 == 0 ? 1 : 0, i % 2 == 0 ? 1 : -1, 0));
    EXPECT_LE(mPhone.trace().steps().size(), Trace::kMaxSteps);
    EXPECT_LE(mPhone.trace().marks().size(), Trace::kMaxMarks);
    EXPECT_EQ(mPhone.trace().steps().back().to, mPhone.cursor());
}

TEST_F(PhoneTest, EachChannelTakesItsOwnBytesOnly) {
    const Bytes greeting = {0xA1, 0x13, 0x03};

    const struct {
        Channel channel;
        Bytes bytes;
        Phone::Outcome outcome = Phone::Outcome::Taken;
        unsigned errors = 1;
    } cases[] = {
        {Channel::Control, greeting, Phone::Outcome::Taken, 0},
        {Channel::Control, {0x15}, Phone::Outcome::Unplug, 0},
        {Channel::Control, {0x15, 0}},
        {Channel::Control, mouse(0, 1, 1)},
        {Channel::Interrupt, greeting},
        {Channel::Interrupt, {0x15}},
    };

    for (const auto& [channel, bytes, outcome, errors] : cases) {
        const std::uint64_t before = mPhone.tally().errors;
        EXPECT_EQ(mPhone.receive(channel, bytes), outcome);
        EXPECT_EQ(mPhone.tally().errors - before, errors) << testing::PrintToString(bytes);
    }
    EXPECT_EQ(mPhone.tally().greetings, 1U);
    EXPECT_EQ(mPhone.tally().unplugs, 1U);
    EXPECT_EQ(mPhone.tally().reports, 0U);
}

TEST_F(PhoneTest, LosingTheInterruptChannelReleasesWhatIsHeld) {
    report(keyboard(1, {224, 4}));
    report(mouse(2, 0, 0));
    (void)logged();
    mPhone.disconnected(Channel::Control);
    mPhone.disconnected(Channel::Interrupt);
    EXPECT_EQ(logged(), (Lines{R"({"channel":"control","event":"disconnected"})",
                               R"({"channel":"interrupt","event":"disconnected",)"
                               R"("held_keys":[224,4],"buttons":2})",
                               R"({"event":"release","button":"right","x":100,"y":200})"}));
    report(keyboard(0, {4}));
    report(mouse(2, 0, 0));
    EXPECT_EQ(mPhone.textField().text(), "a");
    EXPECT_EQ(mPhone.tally().clicks[1], 2U);
}

TEST_F(PhoneTest, SummaryTellsTheWholeSession) {
    mPhone.connected(Channel::Control);
    mPhone.connected(Channel::Interrupt);
    mPhone.receive(Channel::Control, Bytes{0xA1, 0x13, 0x03});
    report(mouse(0, 10, -20));
    report(mouse(1, 0, 0));
    report(mouse(0, 0, 0, -120));
    report(keyboard(0, {52}));
    for (const Bytes& key : {Bytes{0xA1, 5, 48, 0, 0, 0}, Bytes{0xA1, 5, 0, 0, 0, 0},
                             Bytes{0xA1, 6, 129}, Bytes{0xA1, 6, 0}})
        report(key);
    report({});
    EXPECT_EQ(
        mPhone.summary().text(),
        R"({"event":"summary","text":"'","reports":8,"reports_by_kind":{"mouse":3,"keyboard":1,)"
        R"("absolute_mouse":0,"digitizer":0,"consumer":2,"system":2},"moves":1,"dx":10,"dy":-20,)"
        R"("clicks":{"left":1,"right":0,"middle":0},"scrolls":1,"scroll_amount":-120,)"
        R"("cursor":[110,180],"key_presses":1,"consumer_presses":{"48":1},)"
        R"("system_presses":{"129":1},"held_keys":[52],"modifiers":0,"buttons":0,)"
        R"("caps_lock":false,"control_connects":1,"interrupt_connects":1,"greetings":1,)"
        R"("unplugs":0,"errors":1})");
}

} // namespace orbelantine::phone
