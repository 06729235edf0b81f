#include "tools/virtual_phone/Phone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace orbelantine::phone {

namespace {

using Bytes = std::vector<std::uint8_t>;

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

    /// The last line of the log.
    std::string logged() const {
        const std::string text = mText.str();
        const std::size_t before = text.rfind('\n', text.size() - 2);
        return text.substr(before + 1, text.size() - before - 2);
    }

    std::ostringstream mText;
    EventLog mLog{&mText, [] { return std::chrono::milliseconds(7); }};
    Phone mPhone{{200, 400}, mLog};
};

} // namespace

TEST_F(PhoneTest, CursorStartsInTheMiddleAndFollowsTheDeltas) {
    EXPECT_EQ(mPhone.cursor(), (Point{100, 200}));
    report(mouse(0, 5, -300, 0));
    EXPECT_EQ(mPhone.cursor(), (Point{105, 0}));
    EXPECT_EQ(logged(), R"({"t_ms":7,"channel":"interrupt","event":"mouse","buttons":0,)"
                        R"("x":105,"y":0,"dx":5,"dy":-300,"wheel":0})");
}

TEST_F(PhoneTest, LargestDeltasEndInTheCorners) {
    report(mouse(0, 32767, 32767));
    EXPECT_EQ(mPhone.cursor(), (Point{199, 399}));
    report(mouse(0, -32768, -32768));
    EXPECT_EQ(mPhone.cursor(), (Point{0, 0}));
    EXPECT_EQ(mPhone.trace().steps(),
              (std::vector<Step>{{{199, 399}, Stroke::Sweep}, {{0, 0}, Stroke::Sweep}}));
}

TEST_F(PhoneTest, LogTellsWhereEachButtonGoesDownAndUp) {
    report(mouse(1, 5, 0));
    EXPECT_EQ(logged(), R"({"t_ms":7,"event":"press","button":"left","x":105,"y":200})");
    report(mouse(1, 5, 0));
    EXPECT_NE(logged().find(R"("event":"mouse")"), std::string::npos);
    report(mouse(4, 0, 1));
    EXPECT_NE(mText.str().find(R"({"t_ms":7,"event":"release","button":"left","x":110,"y":201})"
                               "\n"
                               R"({"t_ms":7,"event":"press","button":"middle","x":110,"y":201})"),
              std::string::npos);
    mPhone.disconnected(Channel::Interrupt);
    EXPECT_EQ(logged(), R"({"t_ms":7,"event":"release","button":"middle","x":110,"y":201})");
}

TEST_F(PhoneTest, ClicksHitTheTargetsInTheirOrder) {
    mPhone.setTarget({100, 200});
    mPhone.setTarget({150, 250});
    EXPECT_EQ(logged(), R"({"t_ms":7,"event":"target","x":150,"y":250})");
    report(mouse(1, 1, 2));
    report(mouse(0, 0, 0));
    EXPECT_EQ(mPhone.trace().aims(),
              (std::vector<Aim>{{{100, 200}, Point{101, 202}}, {{150, 250}, std::nullopt}}));
}

TEST_F(PhoneTest, NewScreenIsDrawnAnewAndKeepsTheCursor) {
    report(mouse(1, 60, 0));
    mPhone.setScreen({400, 150, 2, 4});
    EXPECT_EQ(logged(), R"({"t_ms":7,"event":"screen","screen":[400,150],"scale":2,"rotation":4})");
    EXPECT_EQ(mPhone.cursor(), (Point{160, 149}));
    EXPECT_TRUE(mPhone.trace().steps().empty());
    EXPECT_EQ(mPhone.tally().clicks[0], 1U);
}

TEST_F(PhoneTest, ButtonsCountOncePerPress) {
    for (const std::uint8_t buttons : {1, 1, 3, 2, 3, 0, 4, 0})
        report(mouse(buttons, 0, 0));
    EXPECT_EQ(mPhone.tally().clicks, (std::array<std::uint64_t, 3>{2, 1, 1}));
    EXPECT_EQ(mPhone.tally().moves, 0U);
}

TEST_F(PhoneTest, TraceTellsDragsAndScrollsByPlace) {
    report(mouse(1, 0, 0));
    report(mouse(1, 10, 0));
    report(mouse(0, 0, 0));
    report(mouse(0, 0, 0, 3));
    report(mouse(0, 0, 0, -1));
    EXPECT_EQ(mPhone.trace().steps(), (std::vector<Step>{{{110, 200}, Stroke::Drag}}));
    EXPECT_EQ(mPhone.trace().marks(), (std::vector<Mark>{{MarkKind::Left, {100, 200}, 1, 0},
                                                         {MarkKind::Scroll, {110, 200}, 2, 2}}));
}

TEST_F(PhoneTest, TraceOfALongSessionKeepsItsLatestPart) {
    for (int i = 0; i < 60'000; ++i)
        report(mouse(i % 2 == 0 ? 1 : 0, i % 2 == 0 ? 1 : -1, 0));
    EXPECT_LE(mPhone.trace().steps().size(), Trace::kMaxSteps);
    EXPECT_LE(mPhone.trace().marks().size(), Trace::kMaxMarks);
    EXPECT_EQ(mPhone.trace().steps().back().to, mPhone.cursor());
}

TEST_F(PhoneTest, AbsolutePositionsSpanTheScreen) {
    report(absoluteMouse(65535, 65535, 0));
    EXPECT_EQ(mPhone.cursor(), (Point{199, 399}));
    report(absoluteMouse(0, 32768, 1));
    EXPECT_EQ(mPhone.cursor(), (Point{0, 200}));
    report(absoluteMouse(0, 32768, 0));
    EXPECT_EQ(mPhone.tally().moves, 2U);
    EXPECT_EQ(mPhone.tally().clicks[0], 1U);
}

TEST_F(PhoneTest, DigitizerTouchesLikeTheAbsoluteMouse) {
    report({0xA1, 3, 1, 0, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0xFF, 0x0F, 0xFF, 0x0F, 0, 0, 9, 0, 1});
    EXPECT_EQ(mText.str(), R"({"t_ms":7,"channel":"interrupt","event":"digitizer","buttons":1,)"
                           R"("x":199,"y":0,"tip":true,"absolute_x":65535,"absolute_y":0,)"
                           R"("scan_counter":9})"
                           "\n"
                           R"({"t_ms":7,"event":"press","button":"left","x":199,"y":0})"
                           "\n");
    EXPECT_EQ(mPhone.tally().clicks[0], 1U);
}

TEST_F(PhoneTest, KeysTypeWhenTheyComeToBeHeld) {
    report(keyboard(2, {225}));
    report(keyboard(2, {225, 11}));
    EXPECT_EQ(logged(), R"({"t_ms":7,"channel":"interrupt","event":"keyboard","modifiers":2,)"
                        R"("keys":[225,11,0,0,0,0],"pressed":[11],"released":[],"typed":"H",)"
                        R"("caps_lock":false})");
    report(keyboard(0, {12, 11}));
    report(keyboard(0, {12, 12}));
    report(keyboard(0, {}));
    EXPECT_EQ(logged(), R"({"t_ms":7,"channel":"interrupt","event":"keyboard","modifiers":0,)"
                        R"("keys":[0,0,0,0,0,0],"pressed":[],"released":[12],"typed":"",)"
                        R"("caps_lock":false})");
    EXPECT_EQ(mPhone.textField().text(), "Hi");
    EXPECT_EQ(mPhone.tally().keyPresses, 3U);
}

TEST_F(PhoneTest, ConsumerAndSystemKeysCountByCode) {
    report({0xA1, 4, 0x23, 0x02, 0, 0});
    EXPECT_EQ(logged(), R"({"t_ms":7,"channel":"interrupt","event":"consumer","report_id":4,)"
                        R"("usage":547,"name":"home"})");
    report({0xA1, 4, 0, 0, 0, 0});
    report({0xA1, 6, 130});
    EXPECT_EQ(logged(),
              R"({"t_ms":7,"channel":"interrupt","event":"system","code":130,"name":"sleep"})");
    report({0xA1, 6, 0});
    EXPECT_EQ(mPhone.tally().consumerPresses, (std::map<std::uint16_t, std::uint64_t>{{547, 1}}));
    EXPECT_EQ(mPhone.tally().systemPresses, (std::map<std::uint8_t, std::uint64_t>{{130, 1}}));
}

TEST_F(PhoneTest, ControlChannelKnowsTheGreetingAndTheUnplug) {
    const Bytes greeting = {0xA1, 0x13, 0x03};
    EXPECT_EQ(mPhone.receive(Channel::Control, greeting), Phone::Outcome::Taken);
    EXPECT_EQ(mPhone.receive(Channel::Control, Bytes{0x15}), Phone::Outcome::Unplug);
    EXPECT_EQ(mPhone.tally().greetings, 1U);
    EXPECT_EQ(mPhone.tally().unplugs, 1U);
    EXPECT_EQ(mPhone.receive(Channel::Control, Bytes{0x15, 0}), Phone::Outcome::Taken);
    EXPECT_EQ(mPhone.tally().errors, 1U);
}

TEST_F(PhoneTest, ChannelsDoNotTakeEachOthersBytes) {
    mPhone.receive(Channel::Control, mouse(0, 1, 1));
    report({0xA1, 0x13, 0x03});
    report({0x15});
    EXPECT_EQ(logged(),
              R"({"t_ms":7,"channel":"interrupt","event":"error","what":)"
              R"("a report is shorter than its two header bytes","size":1,"bytes":"15"})");
    EXPECT_EQ(mPhone.tally().errors, 3U);
    EXPECT_EQ(mPhone.tally().reports, 0U);
}

TEST_F(PhoneTest, LosingTheInterruptChannelReleasesWhatIsHeld) {
    report(keyboard(1, {224, 4}));
    report(mouse(2, 0, 0));
    mPhone.disconnected(Channel::Control);
    EXPECT_EQ(logged(), R"({"t_ms":7,"channel":"control","event":"disconnected"})");
    mPhone.disconnected(Channel::Interrupt);
    EXPECT_NE(mText.str().find(R"({"t_ms":7,"channel":"interrupt","event":"disconnected",)"
                               R"("held_keys":[224,4],"buttons":2})"),
              std::string::npos);
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
    report({0xA1, 5, 48, 0, 0, 0});
    report({0xA1, 6, 129});
    report({});
    EXPECT_EQ(
        mPhone.summary().text(),
        R"({"event":"summary","text":"'","reports":6,"reports_by_kind":{"mouse":3,"keyboard":1,)"
        R"("absolute_mouse":0,"digitizer":0,"consumer":1,"system":1},"moves":1,"dx":10,"dy":-20,)"
        R"("clicks":{"left":1,"right":0,"middle":0},"scrolls":1,"scroll_amount":-120,)"
        R"("cursor":[110,180],"key_presses":1,"consumer_presses":{"48":1},)"
        R"("system_presses":{"129":1},"held_keys":[52],"modifiers":0,"buttons":0,)"
        R"("caps_lock":false,"control_connects":1,"interrupt_connects":1,"greetings":1,)"
        R"("unplugs":0,"errors":1})");
}

TEST_F(PhoneTest, RandomBytesAreEachCountedOnce) {
    std::mt19937 random(4);
    constexpr std::uint64_t kPackets = 20'000;
    for (std::uint64_t i = 0; i < kPackets; ++i) {
        Bytes bytes(random() % 24);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        if (bytes.size() >= 2) {
            bytes[0] = 0xA1;
            bytes[1] %= 8;
        }
        report(bytes);
    }
    EXPECT_EQ(mPhone.tally().reports + mPhone.tally().errors, kPackets);
    EXPECT_GT(mPhone.tally().reports, 100U);
}

} // namespace orbelantine::phone
