#include "bluetooth/DriverApi.h"
#include "hid/channel/HIDDeviceClient.h"
#include "tests/bridge/linux/FakeL2cap.h"
#include "tests/phone/linux/TestHost.h"
#include "tests/support/HandClock.h"
#include "tools/l2cap_bridge/linux/Bridge.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace orbelantine::bridge {

namespace {

using Bytes = FakeL2cap::Bytes;

constexpr const char* kAddress = "00:11:22:33:44:55";
const Bytes kGreeting = {0xA1, 0x13, 0x03};

Bytes keyReport(std::uint8_t key) {
    return {0xA1, 0x02, 0x02, 0, key, 0, 0, 0, 0, 0};
}

/// The library's client before a bridge that runs on a thread of its own.
class SessionTest : public testing::Test {
  protected:
    SessionTest() {
        ::setenv("ORBELANTINE_DEVICE_DIR", mOptions.devices.c_str(), 1);
        mBridge.emplace(Parts{mL2cap, mLog, [] { return std::chrono::milliseconds(0); }}, mOptions,
                        mStop.reader.get());
        mThread = std::thread([this] {
            while (mBridge->step() == Bridge::Outcome::GoesOn) {
            }
        });
        mClient.onDisconnected.connect([this](error_code) { mDisconnected = true; });
    }

    ~SessionTest() override {
        mStop.writer = FileDescriptor();
        mThread.join();
        ::unsetenv("ORBELANTINE_DEVICE_DIR");
    }

    void connect() {
        ASSERT_EQ(mClient.connect(kAddress), error_code());
        EXPECT_EQ(mL2cap.received(17), kGreeting);
        EXPECT_EQ(mL2cap.received(17), kGreeting);
    }

    void sendReport(std::uint8_t key) {
        const Bytes report = keyReport(key);
        mClient.sendReport(report.data(), report.size());
    }

    phone::TemporaryFolder mFolder;
    phone::Pipe mStop;
    phone::EventLog mLog{nullptr, nullptr};
    FakeL2cap mL2cap;
    const Options mOptions = optionsIn(mFolder / "devices");
    std::optional<Bridge> mBridge;
    std::thread mThread;
    std::atomic<bool> mDisconnected = false;
    test::HandClock mClock;
    HIDDeviceClient mClient{DriverApi::system(), mClock};
};

} // namespace

TEST_F(SessionTest, UnplugIsDoneWhenThePhoneHangsUp) {
    connect();
    mClock.onPause([this, path = mBridge->path()] {
        if (mClock.pauses().size() != 2)
            return;
        EXPECT_EQ(mL2cap.received(17), Bytes{0x15});
        mL2cap.hangUp(19);
        mL2cap.hangUp(17);
        // A handle opened now is answered in a turn in which the bridge has seen the hang-up.
        const phone::TestHost later(path);
        later.send(phone::packet::kGetVersion);
        EXPECT_EQ(later.wait(), phone::packet::kVersion4);
    });
    EXPECT_EQ(mClient.virtualCableUnplug(), error_code());
    EXPECT_FALSE(mClient.isConnected());
    EXPECT_EQ(mClock.pauses().size(), 2u);
}

TEST_F(SessionTest, ReportsArriveInTheirOrderAndNoticeAPhoneThatWalksAway) {
    connect();
    for (std::uint8_t key = 0; key < 100; ++key)
        sendReport(key);
    for (std::uint8_t key = 0; key < 100; ++key)
        EXPECT_EQ(mL2cap.received(19), keyReport(key));
    mL2cap.hangUp(19);
    const auto latest = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!mDisconnected && std::chrono::steady_clock::now() < latest) {
        sendReport(0);
        std::this_thread::yield();
    }
    EXPECT_TRUE(mDisconnected);
}

} // namespace orbelantine::bridge
