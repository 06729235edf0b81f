#include "tools/virtual_phone/driver/Driver.h"

#include "tests/phone/Packets.h"

#include <gtest/gtest.h>

#include <optional>

namespace orbelantine::phone {

namespace {

using namespace packet;

const Bytes kSystemReport = {0, 0, 0, 0, 0xA1, 6, 0};

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

TEST_F(DriverTest, EveryPacketOnAFreshHandleHasItsReplyAndCountsAsAnErrorOrNot) {
    struct Case {
        const char* name;
        Bytes packet;
        std::optional<Bytes> reply;
        unsigned errors = 0;
    };

    const Case cases[] = {
        {"type", kGetType, kRelativeMouse},
        {"version", kGetVersion, kVersion4},
        {"connected", kIsConnected, kGone},
        {"another phone's address", changed(kConnectControl, 4, 0x54), failure(1168)},
        {"neither PSM of HID", changed(kConnectControl, 10, 21), failure(1225)},
        {"channel of the other PSM", changed(kConnectControl, 12, 2), failure(87), 1},
        {"and the other way round", changed(kConnectInterrupt, 12, 1), failure(87), 1},
        {"unknown request", {0x10, 0, 0x22, 0}, failure(1), 1},
        {"unknown request with input", {0xFF, 0xFF, 0xFF, 0xFF, 1, 2, 3}, failure(1), 1},
        {"short connect", resized(kConnectControl, 13), failure(87), 1},
        {"long connect", resized(kConnectControl, 15), failure(87), 1},
        {"long type", resized(kGetType, 5), failure(87), 1},
        {"long version", resized(kGetVersion, 5), failure(87), 1},
        {"long connected", resized(kIsConnected, 5), failure(87), 1},
        {"nothing", {}, std::nullopt, 1},
        {"no whole code", resized(kGetType, 3), std::nullopt, 1},
        {"write", kSystemReport, std::nullopt, 1},
    };
    for (const auto& [name, packet, reply, errors] : cases) {
        const std::uint64_t before = mPhone.tally().errors;
        EXPECT_EQ(driver().packet(driver().open(), packet), reply) << name;
        EXPECT_EQ(mPhone.tally().errors - before, errors) << name;
    }
    EXPECT_EQ(mPhone.tally().reports, 0U);
}

TEST_F(DriverTest, EachChannelStandsOnItsOwnHandle) {
    const auto control = connected(kConnectControl);
    const auto interrupt = connected(kConnectInterrupt);
    EXPECT_EQ(request(control, kIsConnected), kStands);
    driver().close(control);
    EXPECT_EQ(request(interrupt, kIsConnected), kStands);
    EXPECT_EQ(driver().packet(interrupt, kSystemReport), std::nullopt);
    EXPECT_EQ(mPhone.tally().reports, 1U);
    EXPECT_EQ(mPhone.tally().errors, 0U);
}

TEST_F(DriverTest, ChannelThatStandsIsNotGivenTwice) {
    const auto control = connected(kConnectControl);
    EXPECT_EQ(request(driver().open(), kConnectControl), failure(170));
    EXPECT_EQ(request(control, kConnectInterrupt), failure(170));
    driver().close(control);
    connected(kConnectInterrupt);
    EXPECT_EQ(mPhone.tally().errors, 1U) << "it comes before the other";
    connected(kConnectControl);
}

TEST_F(DriverTest, TellsTheVersionAndRefusesTheChannelThatItIsToldTo) {
    mFaults.driverVersion = -2;
    mFaults.refuseInterrupt = true;
    const auto control = connected(kConnectControl);
    EXPECT_EQ(request(control, kGetVersion), (Bytes{0, 0, 0, 0, 0xFE, 0xFF}));
    EXPECT_EQ(request(driver().open(), kConnectInterrupt), failure(1225));
}

TEST_F(DriverTest, UnplugDropsBothChannelsAndKeepsTheHandlesUnlessToldToKeepAll) {
    for (const bool keeps : {true, false}) {
        mFaults.keepAfterUnplug = keeps;
        mDriver.reset();
        const auto control = connected(kConnectControl);
        const auto interrupt = connected(kConnectInterrupt);
        EXPECT_EQ(driver().packet(control, kUnplug), std::nullopt);
        for (const auto handle : {control, interrupt})
            EXPECT_EQ(request(handle, kIsConnected), keeps ? kStands : kGone);
        EXPECT_EQ(request(control, kConnectControl), keeps ? failure(170) : kSuccess);
    }
    EXPECT_EQ(mPhone.tally().unplugs, 2U);
}

TEST_F(DriverTest, VanishesOnceAfterSoManyReports) {
    mFaults.vanishAfter = 2;
    connected(kConnectControl);
    const auto interrupt = connected(kConnectInterrupt);
    for (const bool vanishes : {false, true, false}) {
        (void)request(interrupt, kSystemReport);
        EXPECT_EQ(driver().takeVanish(), vanishes);
    }
}

TEST_F(DriverTest, GarbageRepliesComeInThreeShapes) {
    mFaults.garbage = true;
    const auto handle = driver().open();
    Bytes oversize = kVersion4;
    oversize.resize(70, 0xEE);
    for (const Bytes& reply : {Bytes(3), kSuccess, oversize, Bytes(3)})
        EXPECT_EQ(request(handle, kGetVersion), reply);
}

} // namespace orbelantine::phone
