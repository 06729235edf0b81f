#include "tools/l2cap_bridge/linux/Bridge.h"

#include "tests/bridge/linux/FakeL2cap.h"
#include "tests/phone/linux/TestHost.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace orbelantine::bridge {

namespace {

using phone::TestHost;
using Bytes = TestHost::Bytes;
using Milliseconds = std::chrono::milliseconds;

namespace packet = phone::packet;

class BridgeTest : public phone::SteppedServerTest<Bridge, Bridge::Outcome::GoesOn> {
  protected:
    BridgeTest() {
        mBridge.emplace(Parts{mL2cap, mLog, [this] { return mNow; }}, mOptions, mStop.reader.get());
    }

    Bridge& server() override { return *mBridge; }

    bool logged(const std::string& part) const {
        return mLogged.str().find(part) != std::string::npos;
    }

    std::ostringstream mLogged;
    phone::EventLog mLog{&mLogged, [this] { return mNow; }};
    FakeL2cap mL2cap;
    const Options mOptions = optionsIn(mFolder / "devices");
    std::optional<Bridge> mBridge;
};

} // namespace

TEST_F(BridgeTest, RequestsThatNeedNoChannelAreAnswered) {
    const TestHost host = open();
    EXPECT_EQ(exchange(host, packet::kGetType), packet::kRelativeMouse);
    EXPECT_EQ(exchange(host, packet::kGetVersion), packet::kVersion4);
    EXPECT_EQ(exchange(host, packet::kIsConnected), packet::kGone);
    EXPECT_EQ(exchange(host, packet::resized(packet::kGetVersion, 5)), packet::failure(87));
    EXPECT_EQ(exchange(host, {0x10, 0, 0x22, 0}), packet::failure(1));
    EXPECT_EQ(exchange(host, packet::resized(packet::kGetVersion, 3)), std::nullopt);
    EXPECT_EQ(exchange(host, packet::kTypeA), std::nullopt);
    EXPECT_TRUE(logged("a write on a handle without a channel"));
}

TEST_F(BridgeTest, ConnectThatIsNotMeantOrFailsGivesItsNumberAndMayBeTriedAgain) {
    constexpr std::pair<int, std::uint16_t> kErrors[] = {
        {ECONNREFUSED, 1225}, {EHOSTDOWN, 1168}, {ETIMEDOUT, 1460}, {EACCES, 5},
        {EINVAL, 87},         {ENODEV, 1167},    {ENOSYS, 31}};
    const TestHost host = open();
    EXPECT_EQ(exchange(host, packet::changed(packet::kConnectControl, 4, 0x56)),
              packet::failure(1168));
    EXPECT_EQ(exchange(host, packet::changed(packet::kConnectControl, 10, 18)),
              packet::failure(1225));
    EXPECT_EQ(exchange(host, packet::changed(packet::kConnectControl, 12, 2)), packet::failure(87));
    for (const auto& [error, number] : kErrors) {
        mL2cap.simulateConnect(error);
        EXPECT_EQ(exchange(host, packet::kConnectControl), packet::failure(number)) << error;
    }
    mL2cap.simulateConnect(0);
    EXPECT_EQ(exchange(host, packet::kConnectControl), packet::kSuccess);
    EXPECT_EQ(mL2cap.peer(), mOptions.address);
    EXPECT_EQ(exchange(host, packet::kConnectControl), packet::failure(170));
    EXPECT_EQ(exchange(host, packet::kIsConnected), packet::kStands);
}

TEST_F(BridgeTest, SlowConnectKeepsNoOtherWaitingAndEndsRefusedOrTooLateOrWithItsHandle) {
    mL2cap.simulateConnect(EINPROGRESS);
    const TestHost host = open();
    EXPECT_EQ(exchange(host, packet::kConnectControl), std::nullopt);
    EXPECT_EQ(exchange(host, packet::kIsConnected), std::nullopt);
    EXPECT_EQ(exchange(open(), packet::kGetVersion), packet::kVersion4);
    mL2cap.finishConnect(17, ECONNREFUSED);
    run();
    EXPECT_EQ(host.received(), packet::failure(1225));
    EXPECT_EQ(host.received(), packet::kGone);
    EXPECT_EQ(exchange(host, packet::kConnectInterrupt), std::nullopt);
    mL2cap.finishConnect(19, 0);
    run();
    EXPECT_EQ(host.received(), packet::kSuccess);
    const TestHost late = open();
    EXPECT_EQ(exchange(late, packet::kConnectControl), std::nullopt);
    mNow += Channel::kLongestConnect - Milliseconds(1);
    run();
    EXPECT_EQ(late.received(), std::nullopt);
    mNow += Milliseconds(1);
    run();
    EXPECT_EQ(late.received(), packet::failure(1460));
    {
        const TestHost leaving = open();
        EXPECT_EQ(exchange(leaving, packet::kConnectInterrupt), std::nullopt);
    }
    run();
    FakeL2cap::drain(mL2cap.phoneEnd(19));
    EXPECT_EQ(mL2cap.received(19), std::nullopt);
}

TEST_F(BridgeTest, WritesGoOutOneByOneAlsoThoseBeforeTheHandleClosesOrTheBridgeStops) {
    {
        const TestHost host = openInterrupt();
        host.send(packet::kTypeA);
        host.send(packet::kUnplug);
    }
    run();
    EXPECT_EQ(mL2cap.received(19), (Bytes{0xA1, 2, 0, 0, 4, 0, 0, 0, 0, 0}));
    EXPECT_EQ(mL2cap.received(19), (Bytes{0x15}));
    EXPECT_EQ(mL2cap.received(19), std::nullopt);
    const TestHost host = openInterrupt();
    host.send(packet::kTypeA);
    stop();
    EXPECT_EQ(run(), Bridge::Outcome::Stopped);
    EXPECT_EQ(mL2cap.received(19)->size(), 10u);
}

TEST_F(BridgeTest, NoWriteIsLostWhileTheRadioIsBusy) {
    const TestHost host = openInterrupt();
    FakeL2cap::fill(mL2cap.bridgeEnd(19));
    host.send({0, 0, 0, 0, 1});
    host.send({0, 0, 0, 0, 2});
    EXPECT_EQ(exchange(host, packet::kIsConnected), std::nullopt);
    FakeL2cap::drain(mL2cap.phoneEnd(19));
    run();
    EXPECT_EQ(mL2cap.received(19), Bytes{1});
    EXPECT_EQ(mL2cap.received(19), Bytes{2});
    EXPECT_EQ(host.received(), packet::kStands);
}

TEST_F(BridgeTest, PhonesPacketsAreDroppedItsHangUpShowsAndALaterWriteClosesTheHandle) {
    const TestHost host = openInterrupt();
    mL2cap.sendFromPhone(19, {0xA2, 0x01});
    EXPECT_EQ(exchange(host, packet::kIsConnected), packet::kStands);
    EXPECT_EQ(host.received(), std::nullopt);
    EXPECT_TRUE(logged(R"("event":"dropped","handle":1,"bytes":[162,1])"));
    mL2cap.hangUp(19);
    EXPECT_EQ(exchange(host, packet::kIsConnected), packet::kGone);
    EXPECT_EQ(exchange(host, packet::kConnectInterrupt), packet::kSuccess);
    mL2cap.simulateSend(ECONNRESET);
    EXPECT_EQ(exchange(host, packet::kTypeA), packet::kHangUp);
}

TEST_F(BridgeTest, LostRadioRemovesTheDevice) {
    const TestHost control = open();
    EXPECT_EQ(exchange(control, packet::kConnectControl), packet::kSuccess);
    const TestHost interrupt = openInterrupt();
    mL2cap.simulateRadio(ENODEV);
    EXPECT_EQ(run(), Bridge::Outcome::GoesOn);
    mL2cap.hangUp(17);
    EXPECT_EQ(run(), Bridge::Outcome::RadioLost);
    EXPECT_EQ(control.received(), packet::kHangUp);
    EXPECT_EQ(interrupt.received(), packet::kHangUp);
    EXPECT_EQ(mBridge->path(), "");
}

} // namespace orbelantine::bridge
