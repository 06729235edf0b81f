#include "tools/l2cap_bridge/linux/Bridge.h"

#include "tests/bridge/linux/FakeL2cap.h"
#include "tests/phone/linux/TestHost.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <sstream>
#include <string>

namespace orbelantine::bridge {

namespace {

using phone::TestHost;
using Bytes = TestHost::Bytes;
using Milliseconds = std::chrono::milliseconds;

namespace packet = phone::packet;

const Bytes kIsConnected = {0x0C, 0x00, 0x22, 0x00};
const Bytes kYes = {0, 0, 0, 0, 1, 0, 0, 0};
const Bytes kNo = {0, 0, 0, 0, 0, 0, 0, 0};

Bytes failure(std::uint16_t number) {
    return {static_cast<std::uint8_t>(number & 0xFF), static_cast<std::uint8_t>(number >> 8), 0, 0};
}

Bytes changed(Bytes bytes, std::size_t place, std::uint8_t byte) {
    bytes.at(place) = byte;
    return bytes;
}

/// A bridge that is stepped by hand, under a clock that is set by hand.
class BridgeTest : public testing::Test {
  protected:
    BridgeTest() {
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        mStopReader = phone::FileDescriptor(ends[0]);
        mStopWriter = phone::FileDescriptor(ends[1]);
        mOptions.devices = mFolder / "devices";
        mOptions.address = {{0x00, 0x11, 0x22, 0x33, 0x44, 0x55}};
        mBridge.emplace(Parts{mL2cap, mLog, [this] { return mNow; }}, mOptions, mStopReader.get());
    }

    /// Does all that there is to do now.
    Bridge::Outcome run() {
        auto outcome = Bridge::Outcome::GoesOn;
        for (int i = 0; outcome == Bridge::Outcome::GoesOn && i < 8; ++i)
            outcome = mBridge->step(Milliseconds(0));
        return outcome;
    }

    TestHost open() { return TestHost(mBridge->path()); }

    /// The reply to a packet, after letting the bridge run.
    std::optional<Bytes> exchange(const TestHost& host, const Bytes& packet) {
        host.send(packet);
        run();
        return host.received();
    }

    bool logged(const std::string& part) const {
        return mLogged.str().find(part) != std::string::npos;
    }

    phone::TemporaryFolder mFolder;
    phone::FileDescriptor mStopReader;
    phone::FileDescriptor mStopWriter;
    Milliseconds mNow{0};
    std::ostringstream mLogged;
    phone::EventLog mLog{&mLogged, [this] { return mNow; }};
    FakeL2cap mL2cap;
    Options mOptions;
    std::optional<Bridge> mBridge;
};

} // namespace

TEST_F(BridgeTest, RequestsThatNeedNoChannelAreAnswered) {
    const TestHost host = open();
    EXPECT_EQ(exchange(host, {0x04, 0, 0x22, 0}), (Bytes{0, 0, 0, 0, 2, 0, 0, 0}));
    EXPECT_EQ(exchange(host, packet::kGetVersion), packet::kVersion4);
    EXPECT_EQ(exchange(host, kIsConnected), kNo);
    EXPECT_EQ(exchange(host, {0x08, 0, 0x22, 0, 1}), failure(87));
    EXPECT_EQ(exchange(host, {0x10, 0, 0x22, 0}), failure(1));
    EXPECT_EQ(exchange(host, {0x08, 0, 0x22}), std::nullopt);
    EXPECT_EQ(exchange(host, packet::kTypeA), std::nullopt);
    EXPECT_TRUE(logged("a write on a handle without a channel"));
}

TEST_F(BridgeTest, ConnectIsRefusedWithoutThePhoneIfItCannotBeMeant) {
    const TestHost host = open();
    EXPECT_EQ(exchange(host, changed(packet::kConnectControl, 4, 0x56)), failure(1168));
    EXPECT_EQ(exchange(host, changed(packet::kConnectControl, 10, 18)), failure(1225));
    EXPECT_EQ(exchange(host, changed(packet::kConnectControl, 12, 2)), failure(87));
    EXPECT_EQ(exchange(host, packet::kConnectControl), packet::kSuccess);
    EXPECT_EQ(mL2cap.peer(), mOptions.address);
    EXPECT_EQ(exchange(host, packet::kConnectControl), failure(1225));
    EXPECT_EQ(exchange(host, kIsConnected), kYes);
}

TEST_F(BridgeTest, FailedConnectGivesItsWindowsNumberAndMayBeTriedAgain) {
    constexpr std::pair<int, std::uint16_t> kErrors[] = {
        {ECONNREFUSED, 1225}, {EHOSTDOWN, 1168}, {ETIMEDOUT, 1460}, {EACCES, 5},
        {EINVAL, 87},         {ENODEV, 1167},    {ENOSYS, 31}};
    const TestHost host = open();
    for (const auto& [error, number] : kErrors) {
        mL2cap.simulateConnect(error);
        EXPECT_EQ(exchange(host, packet::kConnectControl), failure(number)) << error;
    }
    mL2cap.simulateConnect(0);
    EXPECT_EQ(exchange(host, packet::kConnectControl), packet::kSuccess);
}

TEST_F(BridgeTest, SlowConnectKeepsNoOtherHandleWaiting) {
    const TestHost slow = open();
    const TestHost other = open();
    mL2cap.simulateSlowConnect();
    EXPECT_EQ(exchange(slow, packet::kConnectControl), std::nullopt);
    EXPECT_EQ(exchange(slow, kIsConnected), std::nullopt);
    EXPECT_EQ(exchange(other, packet::kGetVersion), packet::kVersion4);
    mL2cap.finishConnect(17, 0);
    run();
    EXPECT_EQ(slow.received(), packet::kSuccess);
    EXPECT_EQ(slow.received(), kYes);
}

TEST_F(BridgeTest, SlowConnectEndsRefusedOrTooLateOrWithItsHandle) {
    mL2cap.simulateSlowConnect();
    const TestHost host = open();
    EXPECT_EQ(exchange(host, packet::kConnectControl), std::nullopt);
    mL2cap.finishConnect(17, ECONNREFUSED);
    run();
    EXPECT_EQ(host.received(), failure(1225));

    EXPECT_EQ(exchange(host, packet::kConnectControl), std::nullopt);
    mNow += Channel::kLongestConnect - Milliseconds(1);
    run();
    EXPECT_EQ(host.received(), std::nullopt);
    mNow += Milliseconds(1);
    run();
    EXPECT_EQ(host.received(), failure(1460));
    {
        const TestHost leaving = open();
        EXPECT_EQ(exchange(leaving, packet::kConnectInterrupt), std::nullopt);
    }
    run();
    FakeL2cap::drain(mL2cap.phoneEnd(19));
    EXPECT_EQ(mL2cap.received(19), std::nullopt);
}

TEST_F(BridgeTest, WritesGoOutOneByOneAlsoThoseBeforeTheHandleCloses) {
    {
        const TestHost host = open();
        EXPECT_EQ(exchange(host, packet::kConnectInterrupt), packet::kSuccess);
        host.send(packet::kTypeA);
        host.send({0, 0, 0, 0, 0x15});
    }
    run();
    EXPECT_EQ(mL2cap.received(19), (Bytes{0xA1, 2, 0, 0, 4, 0, 0, 0, 0, 0}));
    EXPECT_EQ(mL2cap.received(19), (Bytes{0x15}));
    EXPECT_EQ(mL2cap.received(19), std::nullopt);
}

TEST_F(BridgeTest, NoWriteIsLostWhileTheRadioIsBusy) {
    const TestHost host = open();
    EXPECT_EQ(exchange(host, packet::kConnectInterrupt), packet::kSuccess);
    FakeL2cap::fill(mL2cap.bridgeEnd(19), 1);
    host.send({0, 0, 0, 0, 1});
    host.send({0, 0, 0, 0, 2});
    EXPECT_EQ(exchange(host, kIsConnected), std::nullopt);
    FakeL2cap::drain(mL2cap.phoneEnd(19));
    run();
    EXPECT_EQ(mL2cap.received(19), Bytes{1});
    EXPECT_EQ(mL2cap.received(19), Bytes{2});
    EXPECT_EQ(host.received(), kYes);
}

TEST_F(BridgeTest, WhatThePhoneSendsIsLoggedAndDropped) {
    const TestHost host = open();
    EXPECT_EQ(exchange(host, packet::kConnectInterrupt), packet::kSuccess);
    mL2cap.sendFromPhone(19, {0xA2, 0x01});
    EXPECT_EQ(exchange(host, kIsConnected), kYes);
    EXPECT_EQ(host.received(), std::nullopt);
    EXPECT_TRUE(logged(R"("event":"dropped","handle":1,"bytes":[162,1])"));
}

TEST_F(BridgeTest, HangUpByThePhoneShowsAndALaterWriteClosesTheHandle) {
    const TestHost host = open();
    EXPECT_EQ(exchange(host, packet::kConnectInterrupt), packet::kSuccess);
    mL2cap.hangUp(19);
    EXPECT_EQ(exchange(host, kIsConnected), kNo);
    EXPECT_EQ(exchange(host, packet::kConnectInterrupt), packet::kSuccess);
    mL2cap.simulateSend(ECONNRESET);
    EXPECT_EQ(exchange(host, packet::kTypeA), packet::kHangUp);
}

TEST_F(BridgeTest, LostRadioRemovesTheDevice) {
    const TestHost control = open();
    const TestHost interrupt = open();
    EXPECT_EQ(exchange(control, packet::kConnectControl), packet::kSuccess);
    EXPECT_EQ(exchange(interrupt, packet::kConnectInterrupt), packet::kSuccess);
    mL2cap.simulateRadio(ENODEV);
    EXPECT_EQ(run(), Bridge::Outcome::GoesOn);
    mL2cap.hangUp(17);
    EXPECT_EQ(run(), Bridge::Outcome::RadioLost);
    EXPECT_EQ(control.received(), packet::kHangUp);
    EXPECT_EQ(interrupt.received(), packet::kHangUp);
    EXPECT_EQ(mBridge->path(), "");
}

TEST_F(BridgeTest, StopComesBehindWhatWasSent) {
    const TestHost host = open();
    EXPECT_EQ(exchange(host, packet::kConnectInterrupt), packet::kSuccess);
    host.send(packet::kTypeA);
    mStopWriter = phone::FileDescriptor();
    EXPECT_EQ(run(), Bridge::Outcome::Stopped);
    EXPECT_EQ(mL2cap.received(19)->size(), 10u);
}

} // namespace orbelantine::bridge
