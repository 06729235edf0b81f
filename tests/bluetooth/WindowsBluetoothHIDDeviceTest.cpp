#include "bluetooth/WindowsBluetoothHIDDevice.h"

#include "core/common/errors/ApiCategory.h"
#include "core/common/errors/ErrorAreas.h"
#include "tests/bluetooth/FakeDriverApi.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <set>

namespace orbelantine::test {
namespace {

using Channel = WindowsBluetoothHIDDevice::Channel;
using Bytes = FakeDriverApi::Bytes;

constexpr const char* kPhone = "01:23:45:67:89:AB";
const std::string kDeviceLogName = "orbelantine::WindowsBluetoothHIDDevice::";

class WindowsBluetoothHIDDeviceTest : public testing::Test {
  protected:
    WindowsBluetoothHIDDeviceTest() {
        mApi.simulateHidDriver();
        EXPECT_EQ(mDevice.open(), error_code());
    }

    FakeDriverApi mApi;
    HandClock mClock;
    WindowsBluetoothHIDDevice mDevice{mApi, mClock};
};

TEST_F(WindowsBluetoothHIDDeviceTest, ChecksForExactlyOneVersion) {
    const std::pair<std::int16_t, int> cases[] = {
        {-1, 20156}, {3, 20156}, {4, 0}, {5, 20158}, {32767, 20158}};
    for (const auto& [version, expected] : cases) {
        mApi.version = version;
        const error_code ec = mDevice.checkVersion();
        EXPECT_EQ(ec, expected ? DriverErrors::getErrorCode(expected) : error_code()) << version;
    }
    mApi.failures["DeviceIoControl"] = 31;
    EXPECT_EQ(mDevice.checkVersion(), error_code(31, apiCategory("Driver:DeviceIoControl")));
}

TEST_F(WindowsBluetoothHIDDeviceTest, ConnectSendsAddressBackwardsThenPsmThenChannel) {
    EXPECT_EQ(mDevice.connect(kPhone, 17), 1);
    EXPECT_EQ(mDevice.connect(kPhone, 19), 2);
    EXPECT_EQ(mDevice.channel(), 2);
    mApi.refusedPsm = 0x1234;
    EXPECT_EQ(mDevice.connect(kPhone, 0x1234), 0);
    EXPECT_EQ(mDevice.channel(), 2);
    const std::vector<FakeDriverApi::Request> expected = {
        {0x220000, {0xAB, 0x89, 0x67, 0x45, 0x23, 0x01, 17, 0, 1, 0}},
        {0x220000, {0xAB, 0x89, 0x67, 0x45, 0x23, 0x01, 19, 0, 2, 0}},
        {0x220000, {0xAB, 0x89, 0x67, 0x45, 0x23, 0x01, 0x34, 0x12, 1, 0}},
    };
    EXPECT_EQ(mApi.requests, expected);
}

TEST_F(WindowsBluetoothHIDDeviceTest, AddressIsReadByPositionAloneAndHasSeventeenCharacters) {
    const struct {
        const char* text;
        Bytes backwards;
    } addresses[] = {
        {"ba:dc:fe:01:23:45", {0x45, 0x23, 0x01, 0xFE, 0xDC, 0xBA}},
        {"BA-Dc.FE 01x23/45", {0x45, 0x23, 0x01, 0xFE, 0xDC, 0xBA}},
        {"00:00:00:00:00:FF", {0xFF, 0, 0, 0, 0, 0}},
        // '@' counts 9 and '`' counts 41: no digit is refused.
        {"0@:0`:00:00:00:00", {0, 0, 0, 0, 0x29, 0x09}},
    };

    for (const auto& [text, backwards] : addresses) {
        EXPECT_GT(mDevice.connect(text, 17), 0) << text;
        Bytes address = mApi.requests.back().input;
        address.resize(6);
        EXPECT_EQ(address, backwards) << text;
    }
    CapturedLog log(kLogError, kDeviceLogName);
    for (const char* text : {"", "01:23:45:67:89:A", "01:23:45:67:89:ABC"}) {
        EXPECT_EQ(mDevice.connect(text, 17), 0) << text;
        EXPECT_EQ(
            log.told(),
            (Texts{"error convertBthAddress() Wrong size",
                   "error connect() no connection: an address looks like 01:23:45:67:89:AB"}));
    }
    EXPECT_EQ(mApi.requests.size(), std::size(addresses));
}

TEST_F(WindowsBluetoothHIDDeviceTest, FailedConnectIsLoggedInWords) {
    std::set<std::string> reasons;
    for (const DriverApi::Error error : {170U, 1168U, 1225U, 1460U}) {
        mApi.failures["DeviceIoControl"] = error;
        CapturedLog log(kLogError, kDeviceLogName);
        EXPECT_EQ(mDevice.connect(kPhone, 17), 0);
        const auto lines = log.told();
        ASSERT_EQ(lines.size(), 2U);
        EXPECT_TRUE(lines[1].starts_with("error connect() no connection: ")) << lines[1];
        EXPECT_NE(lines[1].back(), '\n');
        reasons.insert(lines[1]);
    }
    EXPECT_EQ(reasons.size(), 4U);
}

TEST_F(WindowsBluetoothHIDDeviceTest, OnlyAWriteOfMoreThanFiveMillisecondsIsLoggedAsSlow) {
    for (const int ms : {0, 5, 6, 120}) {
        mApi.onWrite = [&] { mClock.advance(std::chrono::milliseconds(ms)); };
        CapturedLog log(kLogTrace, kDeviceLogName);
        EXPECT_TRUE(mDevice.sendData("x", 1));
        EXPECT_EQ(log.told(),
                  ms > 5 ? Texts{"trace sendData() WriteFile took " + std::to_string(ms) + " ms!!!"}
                         : Texts());
    }
}

TEST_F(WindowsBluetoothHIDDeviceTest, OnlyAnOpenDeviceIsAsked) {
    mApi.type = 0x01020304;
    std::uint32_t type = 0;
    EXPECT_TRUE(mDevice.getType(type));
    EXPECT_EQ(type, 0x01020304u);
    mDevice.close();
    CapturedLog log(kLogError, kDeviceLogName);
    EXPECT_EQ(mDevice.connect(kPhone, 17), 0);
    EXPECT_EQ(mDevice.isConnected(), Channel::Unknown);
    EXPECT_FALSE(mDevice.sendData("x", 1));
    EXPECT_FALSE(mDevice.getType(type));
    EXPECT_EQ(type, 0x01020304u);
    EXPECT_EQ(log.told(),
              (Texts{"error connect() Device is not open", "error isConnected() Device is not open",
                     "error sendData() Device is not open", "error getType() Device is not open"}));
    EXPECT_EQ(mApi.requests.size(), 1u);
    EXPECT_TRUE(mApi.writes.empty());
}

TEST(WindowsBluetoothHIDDevice, TriesTheTwoInterfaceClassesInOrder) {
    const error_code notInstalled = DriverErrors::getErrorCode(DriverErrors::DriverNotInstalled);
    const error_code notLoaded = DriverErrors::getErrorCode(DriverErrors::DriverFailedToLoad);

    enum State { None, Installed, Running };

    const struct {
        State first;
        State second;
        error_code expected;
        std::wstring opened;
    } cases[] = {
        {Running, Running, {}, L"1}_LOCALMFG"},   {None, Running, {}, L"2}_LOCALMFG"},
        {Installed, Running, {}, L"2}_LOCALMFG"}, {None, None, notInstalled, L""},
        {None, Installed, notLoaded, L""},        {Installed, None, notLoaded, L""},
    };

    for (const auto& [first, second, expected, opened] : cases) {
        FakeDriverApi api;
        if (first != None)
            api.simulateDevice(driver::kHidInterfaces[0], L"1}_LOCALMFG", first == Running);
        if (second != None)
            api.simulateDevice(driver::kHidInterfaces[1], L"2}_LOCALMFG", second == Running);
        WindowsBluetoothHIDDevice device(api);
        EXPECT_EQ(device.open(), expected);
        EXPECT_EQ(api.openings.empty() ? L"" : api.openings[0].path, opened);
    }
}

} // namespace
} // namespace orbelantine::test
