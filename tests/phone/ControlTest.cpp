#include "tools/virtual_phone/program/Control.h"

#include "tools/virtual_phone/phone/Phone.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

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
    const std::pair<std::string, std::vector<std::string>> wrong[] = {
        {"", {""}},
        {"turn", {" 2"}},
        {"screen",
         {"", " 400 200 1", " 400 200 1 2 3", " 99 200 1 2", " 400 200 nan 2", " 400 200 1 5",
          std::string(" 400 200 1 2\0", 13), std::string(Control::kMaxLine, ' ') + "400 200 1 2"}},
        {"acceleration", {"", " fast"}},
        {"target", {" 200 0", " -1 0", " 1.5 0"}},
        {"vanish", {"", " 0"}},
    };
    std::uint64_t errors = 0;
    for (const auto& [command, arguments] : wrong)
        for (const std::string& words : arguments) {
            mControl.receive(command + words + "\n");
            EXPECT_EQ(mPhone.tally().errors, ++errors) << command << words;
        }
    EXPECT_EQ(mPhone.screen(), (Screen{200, 400}));
    EXPECT_TRUE(mPhone.trace().aims().empty());
    mText.str("");
    mControl.receive("aim 1 1\ntarget 1 2\n");
    EXPECT_TRUE(mText.str().starts_with(
        R"({"t_ms":7,"event":"error","what":"unknown control line 'aim 1 1'","size":0,)"
        R"("bytes":""})"))
        << mText.str();
    EXPECT_EQ(mPhone.trace().aims().size(), 1U);
}

} // namespace orbelantine::phone
