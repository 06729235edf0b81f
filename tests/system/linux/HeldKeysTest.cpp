#include "tests/system/linux/Session.h"
#include "tools/soak/PhoneThread.h"

#include <gtest/gtest.h>

namespace orbelantine::test {
namespace {

using phone::PhoneThread;
using Seen = PhoneThread::Seen;

constexpr const char* kNothingHeld = R"("held_keys":[],"modifiers":0,"buttons":0)";
constexpr const char* kAllHeld = R"("held_keys":[225,4],"modifiers":2,"buttons":3)";

auto shows(const char* text) {
    return [text](const Seen& seen) { return seen.summary.find(text) != std::string::npos; };
}

/// A session with a letter, Shift and both buttons held.
class HeldKeys : public testing::Test {
  protected:
    HeldKeys() {
        EXPECT_EQ(mSession.connect(), error_code());
        // The mouse listens for its screen from there on.
        EXPECT_EQ(mSession.flush(), error_code());
        mSession.surface->onLogicalDimensionsChanged(1080, 2340, 1.0, 0);
        mSession.key(true, kScanShift);
        mSession.key(true, kScanA);
        mSession.surface->onMouseClickDown(IInputContext::MouseButtonLeft, 1, 1);
        mSession.surface->onMouseClickDown(IInputContext::MouseButtonRight, 1, 1);
        EXPECT_TRUE(mPhone.await(shows(kAllHeld))) << mPhone.seen().summary;
        mReports = mPhone.seen().tally.reports;
    }

    ~HeldKeys() override { EXPECT_EQ(mSession.disconnect(), error_code()); }

    [[nodiscard]] std::uint64_t reportsSince() const {
        return mPhone.seen().tally.reports - mReports;
    }

    PhoneThread mPhone{{}, PhoneThread::Detail::Summary};
    Session mSession;
    std::uint64_t mReports = 0;
};

TEST_F(HeldKeys, DisconnectLetsGoByTheChannelsEndWithoutAReport) {
    EXPECT_EQ(mSession.disconnect(), error_code());
    EXPECT_TRUE(mPhone.await(shows(kNothingHeld)));
    EXPECT_TRUE(mPhone.awaitAllClosed());
    EXPECT_EQ(reportsSince(), 0U);
}

TEST_F(HeldKeys, LostFocusLetsAllButTheRightButtonGoByReports) {
    mSession.surface->onInputSurfaceLostFocus();
    EXPECT_TRUE(mPhone.await(shows(R"("held_keys":[],"modifiers":0,"buttons":2)")));
    EXPECT_GT(reportsSince(), 2U);
}

TEST_F(HeldKeys, WhatIsRaisedBeforeAFlushIsOutWhenTheDisconnectBehindItComes) {
    mSession.surface->onInputSurfaceLostFocus();
    mSession.surface->onMouseClickUp(IInputContext::MouseButtonRight, 1, 1);
    EXPECT_EQ(mSession.flush(), error_code());
    EXPECT_EQ(mSession.disconnect(), error_code());
    EXPECT_TRUE(mPhone.awaitAllClosed());
    EXPECT_EQ(reportsSince(), 5U) << "three ups, the parking, one more up";
}

TEST_F(HeldKeys, SleepingLinkForgetsThemUntilTheyArePressedAnew) {
    mSession.client->pauseConnection();
    mSession.settle();
    EXPECT_TRUE(mPhone.await(shows(kNothingHeld)));
    // To the keyboard source Shift is still down: a repeat of it sends nothing.
    mSession.key(true, kScanShift);
    mSession.type(kScanB);
    EXPECT_TRUE(mPhone.await([](const Seen& seen) { return seen.text == "Ab"; }))
        << mPhone.seen().text;
}

} // namespace
} // namespace orbelantine::test
