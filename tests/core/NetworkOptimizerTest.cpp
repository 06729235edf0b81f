#include "core/common/probes/NetworkOptimizer.h"

#include "core/common/OSAL.h"
#include "core/common/probes/WindowsSystemOp.h"
#include "core/common/probes/WlanNames.h"
#include "tests/core/FakeWlanApi.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace orbelantine::test {
namespace {

constexpr std::uint32_t kAutoConfiguration = 8;
const Names kStart = {"open", "load", "listen"};
const Names kStop = {"no streaming", "unload", "unlisten", "close"};
const Names kApplied1 = {"streaming", "set 1 2 0", "set 1 3 1"};
const Names kApplied2 = {"streaming", "set 2 2 0", "set 2 3 1"};

Names all(std::initializer_list<Names> parts) {
    Names joined;
    for (const Names& part : parts)
        joined.insert(joined.end(), part.begin(), part.end());
    return joined;
}

struct NetworkOptimizerTest : testing::Test {
    /// What an optimizer does of which `use` makes use, up to its destructor's end.
    Names doneWhile(const std::function<void(NetworkOptimizer&)>& use) {
        {
            NetworkOptimizer optimizer(api);
            use(optimizer);
        }
        return api.journal.take();
    }

    void startAndNotify(NetworkOptimizer& optimizer, int times = 1) {
        optimizer.start();
        api.journal.await("listen");
        for (int i = 0; i < times; ++i)
            api.notify(kAutoConfiguration, 7);
        api.journal.await("enumerate", times);
    }

    FakeWlanApi api;
};

TEST_F(NetworkOptimizerTest, AppliesItsSettingsOnceForEachChangeOfTheOneLastState) {
    api.adapters = {{{1}, L"Wi-Fi", 1}};
    // The query of the start itself does nothing yet.
    EXPECT_EQ(doneWhile([&](auto& optimizer) { startAndNotify(optimizer, 2); }),
              all({kStart, {"enumerate"}, kApplied1, {"enumerate"}, kStop}));
    // Two adapters in different states take turns.
    api.adapters.push_back({{2}, L"Other", 4});
    EXPECT_EQ(doneWhile([&](auto& optimizer) { startAndNotify(optimizer, 2); }), all({kStart,
                                                                                      {"enumerate"},
                                                                                      kApplied1,
                                                                                      kApplied2,
                                                                                      {"enumerate"},
                                                                                      kApplied1,
                                                                                      kApplied2,
                                                                                      kStop}));
}

TEST_F(NetworkOptimizerTest, GoesOnWithoutTheLibraryAndTellsWhatFails) {
    api.hasLibrary = false;
    api.setError = 5;
    api.adapters = {{{0}, L"Wi-Fi", 9}};
    CapturedLog log(kLogTrace, "orbelantine::NetworkOptimizer::");
    EXPECT_EQ(doneWhile([&](auto& optimizer) { startAndNotify(optimizer); }),
              all({kStart, {"enumerate", "set 0 2 0", "set 0 3 1", "unlisten", "close"}}));
    EXPECT_EQ(
        log.told(),
        (Texts{"debug notified() 0x8: wlan_notification_acm_scan_complete (0x7)\n",
               "trace queryWlanStatus() Num Entries: 1", "trace queryWlanStatus() Current Index: 0",
               "trace queryWlanStatus() Interface Index[0]:\t 0",
               "error queryWlanStatus() StringFromGUID2 failed",
               "trace queryWlanStatus() Interface Description[0]: Wi-Fi",
               "trace queryWlanStatus() Interface State[0]:\t Unknown state: 9",
               "trace queryWlanStatus() Interface state has changed, resetting wlan "
               "configuration",
               "error queryWlanStatus() failed to disable background scans 5",
               "error queryWlanStatus() failed to enable media streaming mode 5"}));
    api.enumerateError = 50;
    (void)doneWhile([&](auto& optimizer) { startAndNotify(optimizer); });
    EXPECT_EQ(log.missing({"WlanEnumInterfaces failed with error: 50"}), Texts{});
}

TEST_F(NetworkOptimizerTest, StaysStoppedWithoutTheServiceAndStartsAndStopsAnyNumberOfTimes) {
    api.openError = 1062;
    CapturedLog log(kLogError, "orbelantine::NetworkOptimizer::");
    EXPECT_EQ(doneWhile([](auto& optimizer) { optimizer.start(); }), Names{"open"});
    EXPECT_EQ(log.told(), Texts{"error doStart() failed to open Wlan handle"});
    api.openError = 0;
    EXPECT_EQ(doneWhile([](auto& optimizer) {
                  optimizer.stop();
                  optimizer.start();
                  optimizer.start();
                  optimizer.stop();
                  optimizer.start();
              }),
              all({kStart, kStop, kStart, kStop}));
}

TEST_F(NetworkOptimizerTest, StopLeavesNothingToAQueryBehindItNorToTheNextStart) {
    api.adapters = {{{1}, L"Wi-Fi", 1}};
    const Names done = doneWhile([&](auto& optimizer) {
        api.whileEnumerating = [&] {
            optimizer.stop();
            api.notify(kAutoConfiguration, 7);
            api.hasLibrary = false;
            optimizer.start();
        };
        startAndNotify(optimizer);
        api.journal.await("listen", 2);
        api.notify(kAutoConfiguration, 7);
        api.journal.await("enumerate", 2);
    });
    EXPECT_EQ(done, all({kStart,
                         {"enumerate"},
                         kApplied1,
                         kStop,
                         kStart,
                         {"enumerate", "set 1 2 0", "set 1 3 1", "unlisten", "close"}}));
}

TEST_F(NetworkOptimizerTest, IsLetGoWhileNotificationsStorm) {
    api.adapters = {{{1}, L"Wi-Fi", 1}};
    std::atomic<bool> over = false;
    std::thread storm([&] {
        while (!over)
            api.notify(kAutoConfiguration, 1);
    });
    for (int i = 0; i < 20; ++i) {
        const Names done = doneWhile([&](auto& optimizer) { startAndNotify(optimizer); });
        EXPECT_EQ(done.back(), "close");
    }
    over = true;
    storm.join();
}

TEST(WlanNames, AreThoseOfTheSystem) {
    EXPECT_STREQ(wlanNotificationName(kAutoConfiguration, 0), "wlan_notification_acm_start");
    EXPECT_STREQ(wlanNotificationName(kAutoConfiguration, 27),
                 "wlan_notification_acm_operational_state_change");
    EXPECT_STREQ(wlanNotificationName(kAutoConfiguration, 28), "unknown wlan_notification_acm_*");
    EXPECT_STREQ(wlanNotificationName(16, 0), "'Unknown'");
    EXPECT_STREQ(wlanStateName(7), "In process of authenticating");
    EXPECT_EQ(wlanStateName(-1), nullptr);
}

TEST(SystemProbes, AreMadeByTheFactoryAndDoNoHarmHere) {
    OSALFactory factory;
    const auto operation = osalCreate<ISystemOp>(factory, "ISystemOp", KVStore(), "");
    operation->start();
    operation->stop();
    EXPECT_EQ(operation->status(), -1);
    const auto optimizer =
        osalCreate<INetworkOptimizer>(factory, "INetworkOptimizer", KVStore(), "");
    optimizer->start();
    optimizer->stop();
}

} // namespace
} // namespace orbelantine::test
