#include "tools/virtual_phone/Driver.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace orbelantine::phone {

namespace {

using Bytes = std::vector<std::uint8_t>;

const Bytes kConnectControl = {0x00, 0x00, 0x22, 0x00, 0x55, 0x44, 0x33,
                               0x22, 0x11, 0x00, 17,   0,    1,    0};
const Bytes kConnectInterrupt = {0x00, 0x00, 0x22, 0x00, 0x55, 0x44, 0x33,
                                 0x22, 0x11, 0x00, 19,   0,    2,    0};
const Bytes kGetType = {0x04, 0x00, 0x22, 0x00};
const Bytes kGetVersion = {0x08, 0x00, 0x22, 0x00};
const Bytes kIsConnected = {0x0C, 0x00, 0x22, 0x00};
const Bytes kUnplug = {0, 0, 0, 0, 0x15};
const Bytes kSystemReport = {0, 0, 0, 0, 0xA1, 6, 0};

const Bytes kSuccess = {0, 0, 0, 0};
const Bytes kInvalidFunction = {1, 0, 0, 0};
const Bytes kInvalidParameter = {87, 0, 0, 0};
const Bytes kNotFound = {0x90, 0x04, 0, 0};
const Bytes kRefused = {0xC9, 0x04, 0, 0};
const Bytes kStands = {0, 0, 0, 0, 1, 0, 0, 0};
const Bytes kGone = {0, 0, 0, 0, 0, 0, 0, 0};

class DriverTest : public testing::Test {
  protected:
    Driver& driver() {
        if (!mDriver)
            mDriver.emplace(Options().address, mFaults, mPhone, mLog);
        return *mDriver;
    }

    Bytes request(Driver::HandleId handle, const Bytes& packet) {
        return driver().packet(handle, packet).value_or(Bytes{});
    }

    Driver::HandleId connected(const Bytes& connect) {
        const Driver::HandleId handle = driver().open();
        EXPECT_EQ(request(handle, connect), kSuccess);
        return handle;
    }

    EventLog mLog{nullptr, nullptr};
    Phone mPhone{{100, 100}, mLog};
    Faults mFaults;
    std::optional<Driver> mDriver;
};

} // namespace

TEST_F(DriverTest, TypeAndVersionNeedNoChannel) {
    const auto handle = driver().open();
    EXPECT_EQ(request(handle, kGetType), (Bytes{0, 0, 0, 0, 2, 0, 0, 0}));
    EXPECT_EQ(request(handle, kGetVersion), (Bytes{0, 0, 0, 0, 4, 0}));
    EXPECT_EQ(request(handle, kIsConnected), kGone);
}

TEST_F(DriverTest, VersionIsSigned) {
    mFaults.driverVersion = -2;
    EXPECT_EQ(request(driver().open(), kGetVersion), (Bytes{0, 0, 0, 0, 0xFE, 0xFF}));
}

TEST_F(DriverTest, EachChannelStandsOnItsOwnHandle) {
    const auto control = connected(kConnectControl);
    const auto interrupt = connected(kConnectInterrupt);
    EXPECT_EQ(request(control, kIsConnected), kStands);
    driver().close(control);
    EXPECT_EQ(request(interrupt, kIsConnected), kStands);
    EXPECT_EQ(mPhone.tally().errors, 0U);
}

TEST_F(DriverTest, ConnectAsksForThisPhoneByItsAddress) {
    Bytes packet = kConnectControl;
    packet[4] ^= 1;
    EXPECT_EQ(request(driver().open(), packet), kNotFound);
}

TEST_F(DriverTest, OnlyTheTwoPsmsOfHidAreServed) {
    Bytes packet = kConnectControl;
    packet[10] = 21;
    EXPECT_EQ(request(driver().open(), packet), kRefused);
}

TEST_F(DriverTest, ConnectsChannelFieldMustFitItsPsm) {
    Bytes packet = kConnectControl;
    packet[12] = 2;
    EXPECT_EQ(request(driver().open(), packet), kInvalidParameter);
    packet = kConnectInterrupt;
    packet[12] = 1;
    EXPECT_EQ(request(driver().open(), packet), kInvalidParameter);
    EXPECT_EQ(mPhone.tally().errors, 2U);
}

TEST_F(DriverTest, ChannelThatStandsIsNotGivenTwice) {
    const auto control = connected(kConnectControl);
    EXPECT_EQ(request(driver().open(), kConnectControl), kRefused);
    EXPECT_EQ(request(control, kConnectInterrupt), kRefused);
    driver().close(control);
    connected(kConnectControl);
}

TEST_F(DriverTest, InterruptBeforeControlStandsAndIsAnError) {
    connected(kConnectInterrupt);
    EXPECT_EQ(mPhone.tally().errors, 1U);
}

TEST_F(DriverTest, RefusesTheChannelThatItIsToldTo) {
    mFaults.refuseInterrupt = true;
    connected(kConnectControl);
    EXPECT_EQ(request(driver().open(), kConnectInterrupt), kRefused);
}

TEST_F(DriverTest, WritesReachThePhoneOnlyThroughAChannel) {
    const auto handle = driver().open();
    EXPECT_EQ(driver().packet(handle, kSystemReport), std::nullopt);
    EXPECT_EQ(mPhone.tally().errors, 1U);
    connected(kConnectControl);
    EXPECT_EQ(driver().packet(connected(kConnectInterrupt), kSystemReport), std::nullopt);
    EXPECT_EQ(mPhone.tally().reports, 1U);
    EXPECT_EQ(mPhone.tally().errors, 1U);
}

TEST_F(DriverTest, UnplugDropsBothChannelsAndKeepsTheHandles) {
    const auto control = connected(kConnectControl);
    const auto interrupt = connected(kConnectInterrupt);
    EXPECT_EQ(driver().packet(control, kUnplug), std::nullopt);
    EXPECT_EQ(request(control, kIsConnected), kGone);
    EXPECT_EQ(request(interrupt, kIsConnected), kGone);
    EXPECT_EQ(request(control, kConnectControl), kSuccess);
}

TEST_F(DriverTest, KeepsTheChannelsAfterAnUnplugWhenToldTo) {
    mFaults.keepAfterUnplug = true;
    const auto control = connected(kConnectControl);
    EXPECT_EQ(driver().packet(control, kUnplug), std::nullopt);
    EXPECT_EQ(request(control, kIsConnected), kStands);
    EXPECT_EQ(mPhone.tally().unplugs, 1U);
}

TEST_F(DriverTest, VanishesOnceAfterSoManyReports) {
    mFaults.vanishAfter = 2;
    connected(kConnectControl);
    const auto interrupt = connected(kConnectInterrupt);
    std::vector<bool> vanishes;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(driver().packet(interrupt, kSystemReport), std::nullopt);
        vanishes.push_back(driver().takeVanish());
    }
    EXPECT_EQ(vanishes, (std::vector<bool>{false, true, false}));
}

TEST_F(DriverTest, GarbageRepliesComeInThreeShapes) {
    mFaults.garbage = true;
    const auto handle = driver().open();
    EXPECT_EQ(request(handle, kGetVersion), (Bytes{0, 0, 0}));
    EXPECT_EQ(request(handle, kGetVersion), kSuccess);
    Bytes oversize = {0, 0, 0, 0, 4, 0};
    oversize.resize(70, 0xEE);
    EXPECT_EQ(request(handle, kGetVersion), oversize);
    EXPECT_EQ(request(handle, kGetVersion), (Bytes{0, 0, 0}));
}

TEST_F(DriverTest, UnknownRequestIsAnInvalidFunction) {
    EXPECT_EQ(request(driver().open(), {0x10, 0x00, 0x22, 0x00}), kInvalidFunction);
    EXPECT_EQ(request(driver().open(), {0xFF, 0xFF, 0xFF, 0xFF, 1, 2, 3}), kInvalidFunction);
    EXPECT_EQ(mPhone.tally().errors, 2U);
}

TEST_F(DriverTest, RequestOfAnotherSizeIsAnInvalidParameter) {
    const auto handle = driver().open();
    for (Bytes packet : {kConnectControl, kGetType, kGetVersion, kIsConnected}) {
        packet.push_back(0);
        EXPECT_EQ(request(handle, packet), kInvalidParameter);
    }
    EXPECT_EQ(request(handle, Bytes(kConnectControl.begin(), kConnectControl.end() - 1)),
              kInvalidParameter);
    EXPECT_EQ(mPhone.tally().errors, 5U);
}

TEST_F(DriverTest, PacketWithoutACodeHasNoReply) {
    const auto handle = driver().open();
    for (std::size_t size = 0; size < 4; ++size)
        EXPECT_EQ(driver().packet(handle, Bytes(size)), std::nullopt);
    EXPECT_EQ(mPhone.tally().errors, 4U);
}

} // namespace orbelantine::phone
