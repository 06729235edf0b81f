#include "bluetooth/BluetoothDriver.h"

#include "core/common/errors/ApiCategory.h"
#include "core/common/errors/ErrorAreas.h"
#include "tests/bluetooth/FakeDriverApi.h"
#include "tests/support/CapturedLog.h"

#include <boost/smart_ptr/make_shared.hpp>
#include <gtest/gtest.h>

#include <future>
#include <thread>
#include <utility>

namespace orbelantine::test {
namespace {

const Guid& kClass = driver::kHandsfreeInterface;
constexpr const wchar_t* kPath = L"{a1}_LOCALMFG";
constexpr std::uint32_t kFlags = 0xA0000000;
const std::string kLogName = "orbelantine::BluetoothDriver::";

error_code driverCode(int value) {
    return DriverErrors::getErrorCode(value);
}

error_code apiCode(int value, const char* api) {
    return {value, apiCategory(api)};
}

error_code noDevice() {
    return {19, boost::system::generic_category()};
}

/// A driver that shares its path, and a device for it.
class BluetoothDriverTest : public testing::Test {
  protected:
    BluetoothDriverTest() { mApi.simulateDevice(kClass, kPath); }

    error_code open(const BluetoothDriver::RemovalCallback& onRemoval = {}) {
        return mDriver.open(kClass, kFlags, onRemoval);
    }

    FakeDriverApi mApi;
    BluetoothDriver mDriver{false, mApi};
};

TEST(BluetoothDriver, OpensFirstPathWithTheMarkInOneOfItsTwoSpellings) {
    const struct {
        std::vector<std::wstring> paths;
        std::wstring opened;
    } cases[] = {
        {{L"none", L"x}_LOCALMFGy", L"z}_LOCALMFG"}, L"x}_LOCALMFGy"},
        {{L"}_LocalMFG-mixed-case", L"a}_localmfg"}, L"a}_localmfg"},
        {{L"}_LOCALMF", L"}_LOCALMFG"}, L"}_LOCALMFG"},
    };

    for (const auto& [paths, opened] : cases) {
        FakeDriverApi api;
        for (const auto& path : paths)
            api.simulateDevice(kClass, path);
        EXPECT_EQ(BluetoothDriver(false, api).open(kClass, kFlags), error_code());
        const FakeDriverApi::Opening expected{opened, 0xC0000000, 3, 3, kFlags};
        EXPECT_EQ(api.openings, std::vector{expected});
    }
}

TEST(BluetoothDriver, EachFailingCallGivesItsOwnCodeAndTellsWhyAndLeavesNothingHeld) {
    const std::string noPath = "error open() getUnboundDevicePath error 7";
    const std::string noDetail =
        "error getUnboundDevicePath() SetupDiGetDeviceInterfaceDetail() failed, error 7";

    const struct {
        error_code expected;
        Texts lines;
    } calls[] = {
        {apiCode(7, "Driver:SetupDiGetClassDevs"),
         {"error getUnboundDevicePath() SetupDiGetClassDevs() failed, error 7", noPath}},
        {apiCode(7, "Driver:SetupDiEnumDeviceInterfaces"),
         {"error getUnboundDevicePath() SetupDiEnumDeviceInterfaces() failed, error 7", noPath}},
        {apiCode(7, "Driver:SetupDiGetDeviceInterfaceDetail"), {noDetail, noPath}},
        {apiCode(7, "Driver:LocalAlloc"),
         {"error getUnboundDevicePath() device interface data allocation error 7", noPath}},
        {apiCode(7, "Driver:SetupDiGetDeviceInterfaceDetail"), {noDetail, noPath}},
        {apiCode(7, "Driver:CreateFile"),
         {"error openLocked() unable to open I/O device handle, device path: {a1}_LOCALMFG, error "
          "7"}},
        {error_code(), // the notification is not vital
         {"error startDeviceRemovalMonitoring() Unable to register device notification for device "
          "path "
          "{a1}_LOCALMFG. Error 0x7",
          "error open() unable to start device removal monitoring, non-fatal error"}},
        {apiCode(7, "Driver:DeviceIoControl"),
         {"error getVersion() DeviceIoControl failed with error 7, device path: {a1}_LOCALMFG"}},
    };

    for (std::size_t number = 1; number <= std::size(calls); ++number) {
        const auto& [expected, lines] = calls[number - 1];
        FakeDriverApi api;
        api.simulateDevice(kClass, kPath);
        api.simulateFailure(number, 7);
        BluetoothDriver driver(true, api);
        CapturedLog log(kLogError, kLogName);
        std::int16_t version = 0;
        error_code ec = driver.open(kClass, kFlags);
        if (!ec)
            ec = driver.getVersion(driver::kGetVersion, version);
        EXPECT_EQ(ec, expected) << "call " << number;
        EXPECT_EQ(log.told(), lines) << "call " << number;
        driver.close();
        EXPECT_EQ(api.held(), 0u) << "call " << number;
    }
}

TEST(BluetoothDriver, SearchThatOnlyHitsOthersOrFailsTellsSo) {
    const struct {
        bool presentUnsuitable;
        bool installed;
        std::size_t failingCall;
        error_code expected;
    } cases[] = {
        {true, false, 0, noDevice()},
        {true, true, 0, noDevice()},
        // The second search is for what is only installed.
        {false, false, 3, apiCode(259, "Driver:SetupDiEnumDeviceInterfaces")},
    };

    for (const auto& [presentUnsuitable, installed, failingCall, expected] : cases) {
        FakeDriverApi api;
        if (presentUnsuitable)
            api.simulateDevice(kClass, L"somebody else's device");
        if (installed)
            api.simulateDevice(kClass, kPath, false);
        api.simulateFailure(failingCall, 1450);
        EXPECT_EQ(BluetoothDriver(false, api).open(kClass, kFlags), expected);
        EXPECT_TRUE(api.openings.empty());
    }
}

TEST_F(BluetoothDriverTest, OpeningIsRefusedWithoutTheFileAndToOthersWhileAnotherHasThePathAlone) {
    mApi.failures["CreateFile"] = 2;
    EXPECT_EQ(open(), driverCode(DriverErrors::DriverNotInstalled));
    mApi.failures["CreateFile"] = 0;
    BluetoothDriver first(true, mApi);
    BluetoothDriver second(true, mApi);
    ASSERT_FALSE(first.open(kClass, kFlags));
    EXPECT_EQ(second.open(kClass, kFlags), driverCode(DriverErrors::AlreadyOpen));
    EXPECT_EQ(open(), error_code()) << "shares it";
    first.close();
    EXPECT_EQ(second.open(kClass, kFlags), error_code());
}

TEST_F(BluetoothDriverTest, RemovalCallbackRunsOnAnotherThreadAndMayClose) {
    std::promise<std::pair<error_code, std::thread::id>> removed;
    ASSERT_FALSE(open([&](error_code ec) {
        mDriver.close();
        removed.set_value({ec, std::this_thread::get_id()});
    }));
    ASSERT_EQ(mApi.held(), 2u) << "a file and the watch on it";
    mApi.simulateRemoval();
    const auto [ec, thread] = removed.get_future().get();
    EXPECT_EQ(ec, noDevice());
    EXPECT_NE(thread, std::this_thread::get_id());
    EXPECT_EQ(mApi.held(), 0u);
}

TEST_F(BluetoothDriverTest, OtherNotificationsAreNoRemoval) {
    std::atomic<int> removals = 0;
    std::promise<void> removed;
    ASSERT_FALSE(open([&](error_code) {
        if (++removals == 1)
            removed.set_value();
    }));
    for (const std::uint32_t action : {0u, 1u, 3u, 4u, 5u, 6u})
        mApi.simulateRemoval(action);
    mApi.simulateRemoval();
    removed.get_future().wait();
    mDriver.close();
    EXPECT_EQ(removals, 1);
}

TEST_F(BluetoothDriverTest, RemovalOfAnEarlierOpeningIsNotThePresentOnes) {
    std::promise<void> mayEnd;
    std::promise<void> entered;
    std::atomic<int> removals = 0;
    ASSERT_FALSE(open([&](error_code) {
        ++removals;
        entered.set_value();
        mayEnd.get_future().wait();
    }));
    mApi.simulateRemoval();
    entered.get_future().wait();
    // Told of twice: the second waits behind the first.
    mApi.simulateRemoval();
    mDriver.close();
    std::promise<void> removed;
    ASSERT_FALSE(open([&](error_code) {
        ++removals;
        removed.set_value();
    }));
    mayEnd.set_value();
    mApi.simulateRemoval();
    removed.get_future().wait();
    EXPECT_EQ(removals, 2);
}

TEST_F(BluetoothDriverTest, CloseEndsARequestThatHangsBeforeItGivesBackTheHandle) {
    ASSERT_FALSE(open());
    mApi.hangingCode = driver::kGetVersion;
    std::int16_t version = 0;
    auto asking = std::async(std::launch::async,
                             [&] { return mDriver.getVersion(driver::kGetVersion, version); });
    mApi.awaitHang();
    mDriver.close();
    EXPECT_EQ(mApi.held(), 0u);
    EXPECT_EQ(asking.get(), apiCode(995, "Driver:DeviceIoControl"));
}

TEST_F(BluetoothDriverTest, LeadsAWholeLifeAndLogsItInItsOwnWords) {
    CapturedLog log(kLogDebug, kLogName);
    BluetoothDriver driver(true, mApi);
    std::int16_t version = 77;
    EXPECT_EQ(driver.getVersion(driver::kGetVersion, version), apiCode(6, "Driver:NotOpen"));
    const auto token = boost::make_shared<int>();
    ASSERT_FALSE(driver.open(kClass, kFlags, [token](error_code) {}));
    EXPECT_EQ(driver.open(kClass, kFlags), driverCode(DriverErrors::AlreadyOpen));
    EXPECT_EQ(mApi.openFiles(), 1u);
    EXPECT_EQ(driver.getVersion(0x22201C, version), apiCode(1, "Driver:DeviceIoControl"));
    EXPECT_EQ(version, 77);
    mApi.version = -2;
    EXPECT_EQ(driver.getVersion(driver::kGetVersion, version), error_code());
    EXPECT_EQ(version, -2);
    EXPECT_EQ(mApi.requests,
              (std::vector<FakeDriverApi::Request>{{0x22201C, {}}, {driver::kGetVersion, {}}}));
    EXPECT_EQ(token.use_count(), 2);
    driver.close();
    driver.close();
    EXPECT_EQ(token.use_count(), 1);
    EXPECT_EQ(mApi.held(), 0u);
    EXPECT_EQ(
        log.told(),
        (Texts{"debug open() Opening {a1}_LOCALMFG",
               "debug openExclusively() Adding {a1}_LOCALMFG to map", "warning open() Already open",
               "error getVersion() DeviceIoControl failed with error 1, device path: "
               "{a1}_LOCALMFG",
               "error getVersion() Old driver. Version not supported",
               "debug close() Closing {a1}_LOCALMFG device",
               "debug close() Closed {a1}_LOCALMFG device",
               "debug close() Removing {a1}_LOCALMFG from map"}));
}

} // namespace
} // namespace orbelantine::test
