#include "hid/channel/HIDDeviceClient.h"

#include "core/common/errors/ErrorAreas.h"
#include "core/common/run/WorkerThread.h"
#include "tests/bluetooth/FakeDriverApi.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <future>
#include <system_error>
#include <thread>

namespace orbelantine::test {
namespace {

using Write = FakeDriverApi::Write;
using Pauses = std::vector<IClock::Duration>;

constexpr const char* kPeer = "01:23:45:67:89:AB";
constexpr std::uint8_t kReport[] = {0xA1, 0x02, 0x05};
const Write kGreeting = {17, {0xA1, 0x13, 0x03}};
const Write kUnplug = {17, {0x15}};

error_code codeOf(int value) {
    return HidErrors::getErrorCode(value);
}

error_code socketCode(int value) {
    return {value, boost::system::system_category()};
}

class HidDeviceClient : public testing::Test {
  protected:
    HidDeviceClient() {
        mApi.simulateHidDriver();
        mClient = std::make_unique<HIDDeviceClient>(mApi, mClock);
        mClient->onDisconnected.connect([this](error_code ec) { mDisconnected.push_back(ec); });
    }

    void send() { mClient->sendReport(kReport, sizeof(kReport)); }

    void connect() { ASSERT_EQ(mClient->connect(kPeer), error_code()); }

    FakeDriverApi mApi;
    HandClock mClock;
    std::vector<error_code> mDisconnected;
    std::unique_ptr<HIDDeviceClient> mClient;
};

TEST_F(HidDeviceClient,
       ConnectsControlThenInterruptThenGreetsTwiceAndReportsOnTheSecondWhileConnected) {
    EXPECT_FALSE(mClient->isConnected());
    EXPECT_EQ(mClient->connect(kPeer), error_code());
    EXPECT_EQ(mClient->connect(kPeer), codeOf(HidErrors::InvalidState));
    EXPECT_TRUE(mClient->isConnected());
    EXPECT_EQ(mApi.openFiles(), 2u);
    std::vector<std::uint16_t> psms;
    for (const auto& request : mApi.requests)
        if (request.code == driver::kConnect)
            psms.push_back(request.input[6]);
    EXPECT_EQ(psms, (std::vector<std::uint16_t>{17, 19}));
    EXPECT_EQ(mApi.writes, (std::vector{kGreeting, kGreeting}));
    EXPECT_TRUE(mClock.pauses().empty());
    send();
    EXPECT_EQ(mApi.writes.back(), (Write{19, {0xA1, 0x02, 0x05}}));
    mClient->disconnect();
    EXPECT_FALSE(mClient->isConnected());
    EXPECT_EQ(mApi.held(), 0u);
    CapturedLog log(kLogDebug, "orbelantine::HIDDeviceClient::");
    send();
    mClient->disconnect();
    EXPECT_EQ(log.told(),
              (Texts{"warning sendReport() already disconnected",
                     "debug disconnect() can only disconnect while connected/connecting."}));
    EXPECT_TRUE(mDisconnected.empty());
}

TEST_F(HidDeviceClient, FailedReportTellsItsOwnListenersOfSuccessAndStaysConnected) {
    int inherited = 0;
    IHIDDeviceClient& base = *mClient;
    base.onDisconnected.connect([&](error_code) { ++inherited; });
    connect();
    mApi.failures["WriteFile"] = 433;
    send();
    EXPECT_EQ(mDisconnected, std::vector{error_code()});
    EXPECT_EQ(inherited, 0);
    EXPECT_TRUE(mClient->isConnected());
    mClient->onDisconnected.connect([this](error_code) { mClient->disconnect(); });
    send();
    EXPECT_FALSE(mClient->isConnected()) << "a slot may call back";
    EXPECT_EQ(mApi.held(), 0u);
}

TEST_F(HidDeviceClient, ForcedDisconnectBreaksACallThatHangsAndClosesTheDevicesUnderAnyClient) {
    mClient->forceDisconnect();

    const struct {
        std::uint32_t hangingCode;
        int expected;
    } cases[] = {{driver::kGetVersion, 136}, {driver::kConnect, -1}};

    for (const auto& [hangingCode, expected] : cases) {
        mApi.hangingCode = hangingCode;
        auto connected = std::async(std::launch::async, [&] { return mClient->connect(kPeer); });
        mApi.awaitHang();
        mClient->forceDisconnect();
        EXPECT_EQ(connected.get(), socketCode(expected)) << hangingCode;
        EXPECT_EQ(mApi.held(), 0u) << hangingCode;
        mApi.hangingCode = 0;
        connect();
        mClient->disconnect();
    }
    connect();
    mApi.hangingCode = driver::kIsConnected;
    auto unplugged = std::async(std::launch::async, [&] { return mClient->virtualCableUnplug(); });
    mApi.awaitHang();
    mClient->forceDisconnect();
    EXPECT_EQ(unplugged.get(), codeOf(HidErrors::SocketIsDisconnected));
    mClient->forceDisconnect();
    EXPECT_EQ(mApi.held(), 0u);
    EXPECT_TRUE(mClient->isConnected());
    send();
    EXPECT_EQ(mDisconnected, std::vector{error_code()});
    EXPECT_TRUE(mClient->isConnected());
}

std::atomic<int> threadsLeft;

std::thread makeThreadIfAnyIsLeft(std::function<void()> body) {
    if (threadsLeft-- <= 0)
        throw std::system_error(EAGAIN, std::generic_category());
    return makeThread(std::move(body));
}

TEST_F(HidDeviceClient, ChannelWithoutAThreadIsAFailedConnect) {
    setThreadMaker(&makeThreadIfAnyIsLeft);
    for (const int left : {0, 1}) {
        threadsLeft = left;
        EXPECT_EQ(mClient->connect(kPeer), error_code(11, boost::system::generic_category()))
            << left;
        EXPECT_EQ(mApi.held(), 0u) << left;
    }
    setThreadMaker(&makeThread);
    connect();
}

TEST_F(HidDeviceClient, UnplugThatCannotBeAskedForIsRefusedAtOnce) {
    EXPECT_EQ(mClient->virtualCableUnplug(), codeOf(HidErrors::InvalidState));
    EXPECT_TRUE(mApi.calls.empty());
    connect();
    mApi.failures["WriteFile"] = 433;
    EXPECT_EQ(mClient->virtualCableUnplug(), socketCode(-1));
    mApi.failures["WriteFile"] = 0;
    mApi.simulateChannelsGone();
    EXPECT_EQ(mClient->virtualCableUnplug(), codeOf(HidErrors::SocketIsDisconnected));
    EXPECT_EQ(mApi.writes.back(), kGreeting);
    EXPECT_TRUE(mClock.pauses().empty());
    EXPECT_TRUE(mClient->isConnected());
}

TEST_F(HidDeviceClient, UnplugEndsWhenThePeerClosesItsSideOrTheProbeFails) {
    const std::function<void()> ends[] = {
        [this] { mApi.simulateChannelsGone(); },
        [this] { mApi.failures["DeviceIoControl"] = 31; },
    };
    Pauses expected;
    for (const auto& end : ends) {
        connect();
        expected.insert(expected.end(), 3, std::chrono::milliseconds(500));
        mClock.onPause([&] {
            if (mClock.pauses().size() == expected.size())
                end();
        });
        EXPECT_EQ(mClient->virtualCableUnplug(), error_code());
        EXPECT_EQ(mClock.pauses(), expected);
        EXPECT_EQ(mApi.writes.back(), kUnplug);
        EXPECT_FALSE(mClient->isConnected());
        EXPECT_EQ(mApi.held(), 0u);
    }
    EXPECT_EQ(mDisconnected, std::vector(2, error_code()));
}

TEST_F(HidDeviceClient, PeerThatNeverClosesTimesOutAndStaysConnected) {
    connect();
    CapturedLog log(kLogWarning);
    EXPECT_EQ(mClient->virtualCableUnplug(), codeOf(HidErrors::TimeoutReached));
    EXPECT_EQ(mClock.pauses(), Pauses(10, std::chrono::milliseconds(500)));
    EXPECT_EQ(log.told().size(), 10u);
    EXPECT_TRUE(mClient->isConnected());
    EXPECT_EQ(mApi.openFiles(), 2u);
    mClient.reset();
    EXPECT_EQ(mApi.held(), 0u);
    EXPECT_TRUE(mDisconnected.empty()) << "its end is silent too";
}

TEST_F(HidDeviceClient, ThreadsMaySendAndTearDownAtWill) {
    connect();
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([this, i] {
            for (int n = 0; n < 100; ++n) {
                if (i == 0)
                    send();
                else if (i == 1)
                    mApi.simulateRemoval();
                else
                    mClient->disconnect(), (void)mClient->connect(kPeer);
            }
        });
    for (auto& thread : threads)
        thread.join();
    mClient->disconnect();
    EXPECT_EQ(mApi.held(), 0u);
}

} // namespace
} // namespace orbelantine::test
