#include "bluetooth/WindowsBluetoothHIDDevice.h"

#include "core/common/ApiCategory.h"
#include "core/common/ErrorAreas.h"
#include "tests/bluetooth/FakeDriverApi.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

namespace orbelantine {
namespace {

using test::CapturedLog;
using test::FakeDriverApi;
using test::HandClock;
using Channel = WindowsBluetoothHIDDevice::Channel;
using Bytes = FakeDriverApi::Bytes;

constexpr const char* kAddress = "01:23:45:67:89:AB";

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
    const struct {
        std::int16_t version;
        error_code expected;
    } cases[] = {
        {-1, DriverErrors::getErrorCode(20156)},
        {3, DriverErrors::getErrorCode(20156)},
        {4, error_code()},
        {5, DriverErrors::getErrorCode(20158)},
        {32767, DriverErrors::getErrorCode(20158)},
    };

    for (const auto& [version, expected] : cases) {
        mApi.simulateVersion(version);
        EXPECT_EQ(mDevice.checkVersion(), expected) << version;
    }
    mApi.simulateFailureOf("DeviceIoControl", 31);
    EXPECT_EQ(mDevice.checkVersion(), error_code(31, apiCategory("Driver:DeviceIoControl")));
}

TEST_F(WindowsBluetoothHIDDeviceTest, ConnectSendsAddressBackwardsThenPsmThenChannel) {
    EXPECT_EQ(mDevice.connect(kAddress, 17), 1);
    EXPECT_EQ(mDevice.connect(kAddress, 19), 2);
    EXPECT_EQ(mDevice.connect(kAddress, 0x1234), 1);
    const std::vector<FakeDriverApi::Request> expected = {
        {0x220000, {0xAB, 0x89, 0x67, 0x45, 0x23, 0x01, 17, 0, 1, 0}},
        {0x220000, {0xAB, 0x89, 0x67, 0x45, 0x23, 0x01, 19, 0, 2, 0}},
        {0x220000, {0xAB, 0x89, 0x67, 0x45, 0x23, 0x01, 0x34, 0x12, 1, 0}},
    };
    EXPECT_EQ(mApi.requests(), expected);
}

TEST_F(WindowsBluetoothHIDDeviceTest, AddressIsReadByPositionAlone) {
    const struct {
        const char* text;
        Bytes backwards;
    } cases[] = {
        {"ab:cd:ef:01:23:45", {0x45, 0x23, 0x01, 0xEF, 0xCD, 0xAB}},
        {"Ab:cD:EF:01:23:45", {0x45, 0x23, 0x01, 0xEF, 0xCD, 0xAB}},
        {"AB-CD.EF 01x23/45", {0x45, 0x23, 0x01, 0xEF, 0xCD, 0xAB}},
        {"00:00:00:00:00:FF", {0xFF, 0, 0, 0, 0, 0}},
        // '@' counts 9 and '`' counts 41: no digit is refused.
        {"0@:0`:00:00:00:00", {0, 0, 0, 0, 0x29, 0x09}},
    };

    for (const auto& [text, backwards] : cases) {
        EXPECT_GT(mDevice.connect(text, 17), 0) << text;
        Bytes address = mApi.requests().back().input;
        address.resize(6);
        EXPECT_EQ(address, backwards) << text;
    }
}

TEST_F(WindowsBluetoothHIDDeviceTest, AddressOfAnotherLengthMakesNoRequest) {
    CapturedLog log(kLogError);
    for (const char* text : {"", "01:23:45:67:89:A", "01:23:45:67:89:ABC"})
        EXPECT_EQ(mDevice.connect(text, 17), 0) << text;
    EXPECT_TRUE(mApi.requests().empty());
    const CapturedLog::Line line{
        kLogError, "orbelantine::WindowsBluetoothHIDDevice::convertBthAddress() Wrong size"};
    EXPECT_EQ(log.take(), std::vector(3, line));
}

TEST_F(WindowsBluetoothHIDDeviceTest, RefusedConnectGivesZero) {
    mApi.simulateRefusedPsm(19);
    EXPECT_EQ(mDevice.connect(kAddress, 19), 0);
    EXPECT_EQ(mDevice.channel(), -1);
}

TEST_F(WindowsBluetoothHIDDeviceTest, ProbeTellsGoneFromUnknown) {
    EXPECT_EQ(mDevice.isConnected(), Channel::Gone);
    ASSERT_GT(mDevice.connect(kAddress, 17), 0);
    EXPECT_EQ(mDevice.isConnected(), Channel::Stands);
    mApi.simulateFailureOf("DeviceIoControl", 1);
    EXPECT_EQ(mDevice.isConnected(), Channel::Unknown);
}

TEST_F(WindowsBluetoothHIDDeviceTest, SendsInOneWriteAndTellsAFailure) {
    const Bytes report = {0xA1, 0x01, 0x00};
    ASSERT_GT(mDevice.connect(kAddress, 19), 0);
    EXPECT_TRUE(mDevice.sendData(report.data(), report.size()));
    const FakeDriverApi::Write expected{19, report};
    EXPECT_EQ(mApi.writes(), std::vector{expected});
    mApi.simulateFailureOf("WriteFile", 433);
    EXPECT_FALSE(mDevice.sendData(report.data(), report.size()));
}

TEST_F(WindowsBluetoothHIDDeviceTest, OnlyAWriteOfMoreThanFiveMillisecondsIsLoggedAsSlow) {
    const std::string slow = "orbelantine::WindowsBluetoothHIDDevice::sendData() WriteFile took ";
    for (const int ms : {0, 5, 6, 120}) {
        mApi.onWrite([&] { mClock.advance(std::chrono::milliseconds(ms)); });
        CapturedLog log(kLogTrace);
        EXPECT_TRUE(mDevice.sendData("x", 1));
        std::vector<CapturedLog::Line> expected;
        if (ms > 5)
            expected.push_back({kLogTrace, slow + std::to_string(ms) + " ms!!!"});
        EXPECT_EQ(log.take(), expected) << ms;
    }
}

TEST_F(WindowsBluetoothHIDDeviceTest, TypeIsTheDriversAnswer) {
    mApi.simulateType(0x01020304);
    std::uint32_t type = 0;
    EXPECT_TRUE(mDevice.getType(type));
    EXPECT_EQ(type, 0x01020304u);
}

TEST_F(WindowsBluetoothHIDDeviceTest, ClosedDeviceIsAskedNothing) {
    mDevice.close();
    CapturedLog log(kLogError);
    std::uint32_t type = 5;
    EXPECT_EQ(mDevice.connect(kAddress, 17), 0);
    EXPECT_EQ(mDevice.isConnected(), Channel::Unknown);
    EXPECT_FALSE(mDevice.sendData("x", 1));
    EXPECT_FALSE(mDevice.getType(type));
    EXPECT_EQ(type, 5u);
    std::vector<CapturedLog::Line> expected;
    for (const char* name : {"connect", "isConnected", "sendData", "getType"})
        expected.push_back({kLogError, std::string("orbelantine::WindowsBluetoothHIDDevice::") +
                                           name + "() Device is not open"});
    EXPECT_EQ(log.take(), expected);
    EXPECT_TRUE(mApi.requests().empty());
    EXPECT_TRUE(mApi.writes().empty());
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
        EXPECT_EQ(api.openings().empty() ? L"" : api.openings()[0].path, opened);
    }
}

TEST(WindowsBluetoothHIDDevice, TwoDevicesShareOnePath) {
    FakeDriverApi api;
    api.simulateHidDriver();
    WindowsBluetoothHIDDevice control(api);
    WindowsBluetoothHIDDevice interrupt(api);
    EXPECT_EQ(control.open(), error_code());
    EXPECT_EQ(interrupt.open(), error_code());
    EXPECT_EQ(api.openFiles(), 2u);
}

} // namespace
} // namespace orbelantine
