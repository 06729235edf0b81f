#include "tools/virtual_phone/Control.h"

#include "tools/virtual_phone/Phone.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace orbelantine::phone {

namespace {

class ControlTest : public testing::Test {
  protected:
    std::ostringstream mText;
    EventLog mLog{&mText, [] { return std::chrono::milliseconds(7); }};
    Phone mPhone{{200, 400}, mLog};
    std::chrono::milliseconds mGone{0};
    Control mControl{mPhone, [this](std::chrono::milliseconds time) { mGone = time; }};
};

} // namespace

TEST_F(ControlTest, LinesActOnceTheyHaveEnded) {
    mControl.receive("acceleration curve\r\n\tscreen 400  200 1.5 2 ");
    EXPECT_EQ(mText.str(), "{\"t_ms\":7,\"event\":\"acceleration\",\"kind\":\"curve\"}\n");
    EXPECT_EQ(mPhone.screen(), (Screen{200, 400}));
    mControl.receive("\ntarget 399 199\n");
    EXPECT_EQ(mPhone.screen(), (Screen{400, 200, 1.5, 2}));
    EXPECT_EQ(mPhone.trace().aims(), (std::vector<Aim>{{{399, 199}, std::nullopt}}));
    mControl.receive("vanish 500\n");
    EXPECT_EQ(mGone, std::chrono::milliseconds(500));
    EXPECT_EQ(mPhone.tally().errors, 0U);
}

TEST_F(ControlTest, BadLineIsAnErrorAndChangesNothing) {
    const std::vector<std::string> wrong = {
        "",
        "turn 2",
        "screen",
        "screen 400 200 1",
        "screen 400 200 1 2 3",
        "screen 99 200 1 2",
        "screen 400 200 nan 2",
        "screen 400 200 1 5",
        "acceleration",
        "acceleration fast",
        "target 200 0",
        "target -1 0",
        "target 1.5 0",
        "vanish",
        "vanish 0",
        std::string("screen 400 200 1 2\0", 19),
        std::string(Control::kMaxLine - 10, ' ') + "screen 400 200 1 2",
    };
    for (const std::string& line : wrong)
        mControl.receive(line + "\n");
    EXPECT_EQ(mPhone.tally().errors, wrong.size());
    EXPECT_EQ(mPhone.screen(), (Screen{200, 400}));
    EXPECT_TRUE(mPhone.trace().aims().empty());
    mControl.receive("target 1 2\n");
    EXPECT_EQ(mPhone.trace().aims().size(), 1U);
}

TEST_F(ControlTest, ErrorSaysWhatIsWrong) {
    mControl.receive("target 200 1\n");
    mControl.receive("aim 1 1\n");
    EXPECT_EQ(mText.str(),
              R"({"t_ms":7,"event":"error","what":"target wants a place on the screen, not )"
              R"('target 200 1'","size":0,"bytes":""})"
              "\n"
              R"({"t_ms":7,"event":"error","what":"unknown control line 'aim 1 1'",)"
              R"("size":0,"bytes":""})"
              "\n");
}

} // namespace orbelantine::phone
