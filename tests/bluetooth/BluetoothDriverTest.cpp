#include "bluetooth/BluetoothDriver.h"

#include "core/common/ApiCategory.h"
#include "core/common/ErrorAreas.h"
#include "tests/bluetooth/FakeDriverApi.h"
#include "tests/support/CapturedLog.h"

#include <boost/smart_ptr/make_shared.hpp>
#include <gtest/gtest.h>

#include <future>

namespace orbelantine {
namespace {

using test::CapturedLog;
using test::FakeDriverApi;

const Guid& kClass = driver::kHandsfreeInterface;
constexpr const wchar_t* kPath = L"{a1}_LOCALMFG";
constexpr std::uint32_t kFlags = 0xA0000000;
constexpr std::uint32_t kVersionRequest = 0x222018;
constexpr DriverApi::Error kSomeError = 1450;

error_code driverCode(int value) {
    return DriverErrors::getErrorCode(value);
}

error_code apiCode(int value, const char* api) {
    return {value, apiCategory(api)};
}

error_code noDevice() {
    return {19, boost::system::generic_category()};
}

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
        BluetoothDriver driver(false, api);
        EXPECT_EQ(driver.open(kClass, kFlags), error_code());
        const FakeDriverApi::Opening expected{opened, 0xC0000000, 3, 3, kFlags};
        EXPECT_EQ(api.openings(), std::vector{expected});
    }
}

TEST(BluetoothDriver, WatchesTheOpenedHandleForRemoval) {
    FakeDriverApi api;
    api.simulateDevice(kClass, kPath);
    BluetoothDriver driver(false, api);
    ASSERT_FALSE(driver.open(kClass, kFlags));
    ASSERT_EQ(api.filters().size(), 1u);
    const auto filter = api.filters()[0];
    EXPECT_EQ(filter.size, 416u);
    EXPECT_EQ(filter.flags, 0u);
    EXPECT_EQ(filter.type, 1u);
    EXPECT_NE(filter.target, 0);
    EXPECT_EQ(filter.unused, decltype(filter.unused){});
}

TEST(BluetoothDriver, EachFailingCallGivesItsOwnCodeAndLeavesNothingHeld) {
    const error_code cases[] = {
        apiCode(kSomeError, "Driver:SetupDiGetClassDevs"),
        apiCode(kSomeError, "Driver:SetupDiEnumDeviceInterfaces"),
        apiCode(kSomeError, "Driver:SetupDiGetDeviceInterfaceDetail"),
        apiCode(kSomeError, "Driver:LocalAlloc"),
        apiCode(kSomeError, "Driver:SetupDiGetDeviceInterfaceDetail"),
        apiCode(kSomeError, "Driver:CreateFile"),
        error_code(), // the notification is not vital
        apiCode(kSomeError, "Driver:DeviceIoControl"),
    };
    for (std::size_t number = 1; number <= std::size(cases); ++number) {
        FakeDriverApi api;
        api.simulateDevice(kClass, kPath);
        api.simulateFailure(number, kSomeError);
        BluetoothDriver driver(true, api);
        std::int16_t version = 0;
        error_code ec = driver.open(kClass, kFlags);
        if (!ec && number == std::size(cases))
            ec = driver.getVersion(kVersionRequest, version);
        EXPECT_EQ(ec, cases[number - 1]) << "call " << number;
        driver.close();
        EXPECT_EQ(api.held(), 0u) << "call " << number;
    }
}

TEST(BluetoothDriver, SearchWithoutHitTellsWhy) {
    const struct {
        const char* what;
        bool presentUnsuitable;
        bool installed;
        error_code expected;
    } cases[] = {
        {"nothing at all", false, false, driverCode(DriverErrors::DriverNotInstalled)},
        {"installed and not running", false, true, driverCode(DriverErrors::DriverFailedToLoad)},
        {"only devices of others", true, false, noDevice()},
        {"another's is present", true, true, noDevice()},
    };

    for (const auto& testCase : cases) {
        FakeDriverApi api;
        if (testCase.presentUnsuitable)
            api.simulateDevice(kClass, L"somebody else's device");
        if (testCase.installed)
            api.simulateDevice(kClass, kPath, false);
        BluetoothDriver driver(false, api);
        EXPECT_EQ(driver.open(kClass, kFlags), testCase.expected) << testCase.what;
        EXPECT_TRUE(api.openings().empty()) << testCase.what;
    }
}

TEST(BluetoothDriver, SecondSearchThatFailsOtherwiseGivesTheFirstFailure) {
    FakeDriverApi api;
    api.simulateFailure(3, kSomeError);
    BluetoothDriver driver(false, api);
    EXPECT_EQ(driver.open(kClass, kFlags), apiCode(259, "Driver:SetupDiEnumDeviceInterfaces"));
}

TEST(BluetoothDriver, MissingFileAtOpeningMeansNotInstalled) {
    FakeDriverApi api;
    api.simulateDevice(kClass, kPath);
    api.simulateFailureOf("CreateFile", 2);
    BluetoothDriver driver(false, api);
    EXPECT_EQ(driver.open(kClass, kFlags), driverCode(DriverErrors::DriverNotInstalled));
}

TEST(BluetoothDriver, OpenWhileOpenIsRefusedAndStaysOpen) {
    FakeDriverApi api;
    api.simulateDevice(kClass, kPath);
    BluetoothDriver driver(false, api);
    ASSERT_FALSE(driver.open(kClass, kFlags));
    EXPECT_EQ(driver.open(kClass, kFlags), driverCode(DriverErrors::AlreadyOpen));
    EXPECT_EQ(api.openFiles(), 1u);
}

TEST(BluetoothDriver, ExclusivePathIsHeldUntilClosed) {
    FakeDriverApi api;
    api.simulateDevice(kClass, kPath);
    BluetoothDriver first(true, api);
    BluetoothDriver second(true, api);
    BluetoothDriver sharing(false, api);
    ASSERT_FALSE(first.open(kClass, kFlags));
    EXPECT_EQ(second.open(kClass, kFlags), driverCode(DriverErrors::AlreadyOpen));
    EXPECT_EQ(sharing.open(kClass, kFlags), error_code());
    first.close();
    EXPECT_EQ(second.open(kClass, kFlags), error_code());
}

TEST(BluetoothDriver, RemovalCallbackRunsOnAnotherThreadAndMayClose) {
    FakeDriverApi api;
    api.simulateDevice(kClass, kPath);
    BluetoothDriver driver(false, api);
    std::promise<std::pair<error_code, std::thread::id>> removed;
    const auto onRemoval = [&](error_code ec) {
        driver.close();
        removed.set_value({ec, std::this_thread::get_id()});
    };
    ASSERT_FALSE(driver.open(kClass, kFlags, onRemoval));
    api.simulateRemoval();
    const auto [ec, thread] = removed.get_future().get();
    EXPECT_EQ(ec, noDevice());
    EXPECT_NE(thread, std::this_thread::get_id());
    EXPECT_EQ(api.held(), 0u);
}

TEST(BluetoothDriver, OtherNotificationsAreNoRemoval) {
    FakeDriverApi api;
    api.simulateDevice(kClass, kPath);
    std::atomic<int> removals = 0;
    std::promise<void> removed;
    {
        BluetoothDriver driver(false, api);
        const auto onRemoval = [&](error_code) {
            if (++removals == 1)
                removed.set_value();
        };
        ASSERT_FALSE(driver.open(kClass, kFlags, onRemoval));
        for (const std::uint32_t action : {0u, 1u, 3u, 4u, 5u, 6u})
            api.simulateRemoval(action);
        api.simulateRemoval();
        removed.get_future().wait();
    }
    EXPECT_EQ(removals, 1);
}

TEST(BluetoothDriver, CloseDropsTheCallbackEvenWhenNothingIsOpen) {
    FakeDriverApi api;
    api.simulateDevice(kClass, kPath);
    BluetoothDriver driver(false, api);
    const auto token = boost::make_shared<int>();
    ASSERT_FALSE(driver.open(kClass, kFlags, [token](error_code) {}));
    EXPECT_EQ(token.use_count(), 2);
    driver.close();
    EXPECT_EQ(token.use_count(), 1);
    driver.close();
    EXPECT_EQ(api.held(), 0u);
}

TEST(BluetoothDriver, VersionOfAClosedDriverIsAnInvalidHandle) {
    FakeDriverApi api;
    BluetoothDriver driver(false, api);
    std::int16_t version = 77;
    EXPECT_EQ(driver.getVersion(kVersionRequest, version), apiCode(6, "Driver:NotOpen"));
    EXPECT_EQ(version, 77);
    EXPECT_TRUE(api.requests().empty());
}

TEST(BluetoothDriver, VersionIsAskedWithoutInput) {
    FakeDriverApi api;
    api.simulateDevice(kClass, kPath);
    api.simulateVersion(-2);
    BluetoothDriver driver(false, api);
    ASSERT_FALSE(driver.open(kClass, kFlags));
    std::int16_t version = 0;
    EXPECT_EQ(driver.getVersion(driver::kGetVersion, version), error_code());
    EXPECT_EQ(version, -2);
    const FakeDriverApi::Request expected{driver::kGetVersion, {}};
    EXPECT_EQ(api.requests(), std::vector{expected});
}

TEST(BluetoothDriver, LogsAWholeLifeInItsOwnWords) {
    FakeDriverApi api;
    api.simulateDevice(kClass, kPath);
    CapturedLog log(kLogDebug);
    BluetoothDriver driver(true, api);
    ASSERT_FALSE(driver.open(kClass, kFlags));
    (void)driver.open(kClass, kFlags);
    std::int16_t version = 0;
    (void)driver.getVersion(kVersionRequest, version);
    driver.close();
    const std::string name = "orbelantine::BluetoothDriver::";
    const std::vector<CapturedLog::Line> expected = {
        {kLogDebug, name + "open() Opening {a1}_LOCALMFG"},
        {kLogDebug, name + "openExclusively() Adding {a1}_LOCALMFG to map"},
        {kLogWarning, name + "open() Already open"},
        {kLogError, name + "getVersion() DeviceIoControl failed with error 1, device path: "
                           "{a1}_LOCALMFG"},
        {kLogError, name + "getVersion() Old driver. Version not supported"},
        {kLogDebug, name + "close() Closing {a1}_LOCALMFG device"},
        {kLogDebug, name + "close() Closed {a1}_LOCALMFG device"},
        {kLogDebug, name + "close() Removing {a1}_LOCALMFG from map"},
    };
    EXPECT_EQ(log.take(), expected);
}

TEST(BluetoothDriver, LogsWhyOpeningFailed) {
    const struct {
        const char* call;
        std::vector<std::string> lines;
    } cases[] = {
        {"SetupDiGetClassDevs",
         {"getUnboundDevicePath() SetupDiGetClassDevs() failed, error 7",
          "open() getUnboundDevicePath error 7"}},
        {"SetupDiEnumDeviceInterfaces",
         {"getUnboundDevicePath() SetupDiEnumDeviceInterfaces() failed, error 7",
          "open() getUnboundDevicePath error 7"}},
        {"SetupDiGetDeviceInterfaceDetail",
         {"getUnboundDevicePath() SetupDiGetDeviceInterfaceDetail() failed, error 7",
          "open() getUnboundDevicePath error 7"}},
        {"LocalAlloc",
         {"getUnboundDevicePath() device interface data allocation error 7",
          "open() getUnboundDevicePath error 7"}},
        {"CreateFile",
         {"openLocked() unable to open I/O device handle, device path: {a1}_LOCALMFG, error 7"}},
        {"CM_Register_Notification",
         {"startDeviceRemovalMonitoring() Unable to register device notification for device path "
          "{a1}_LOCALMFG. Error 0x7",
          "open() unable to start device removal monitoring, non-fatal error"}},
    };

    for (const auto& [call, lines] : cases) {
        FakeDriverApi api;
        api.simulateDevice(kClass, kPath);
        api.simulateFailureOf(call, 7);
        BluetoothDriver driver(false, api);
        CapturedLog log(kLogError);
        (void)driver.open(kClass, kFlags);
        std::vector<CapturedLog::Line> expected;
        for (const auto& line : lines)
            expected.push_back({kLogError, "orbelantine::BluetoothDriver::" + line});
        EXPECT_EQ(log.take(), expected);
    }
}

} // namespace
} // namespace orbelantine
