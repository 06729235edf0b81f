#include "tools/l2cap_bridge/linux/ServiceProfile.h"

#include "hid/link/HIDServiceRecord.h"
#include "tools/l2cap_bridge/ServiceRecord.h"
#include "tools/virtual_stack/linux/FakeBlueZ.h"
#include "tools/virtual_stack/linux/PrivateBus.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <utility>

namespace orbelantine::bridge {

namespace {

using stack::FakeBlueZ;

constexpr const char* kProfile = "org.bluez.Profile1";
constexpr const char* kRecord = "<record/>";

class ServiceProfileTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!mBus.runs())
            GTEST_SKIP() << "dbus-daemon is not installed";
    }

    void publish() {
        mProfile.emplace(mBus.address(), kRecord, [this](const std::string& line) {
            mSaid = line.substr(0, line.find(':'));
        });
    }

    /// The line for the user, up to its colon, if publishing fails.
    std::string failure() {
        try {
            publish();
            return "";
        } catch (const RecordError& error) {
            const std::string line = error.what();
            return line.substr(0, line.find(':'));
        }
    }

    /// Lets the profile run as the bridge's loop does, until it says something.
    std::string said() {
        const auto latest = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (mSaid.empty() && std::chrono::steady_clock::now() < latest) {
            pollfd place = mProfile->wanted();
            ::poll(&place, 1, 50);
            mProfile->process();
        }
        return std::exchange(mSaid, "");
    }

    stack::PrivateBus mBus;
    std::string mSaid;
    std::optional<ServiceProfile> mProfile;
};

} // namespace

TEST(ServiceRecord, IsAsBlueZTakesIt) {
    EXPECT_EQ(serviceRecordXml(HIDServiceRecord()), R"(<?xml version="1.0" encoding="UTF-8"?>
<record>
  <attribute id="0x0001"><sequence><uuid value="0x1124"/></sequence></attribute>
  <attribute id="0x0004"><sequence><sequence><uuid value="0x0100"/><uint16 value="0x0011"/></sequence><sequence><uuid value="0x0011"/></sequence></sequence></attribute>
  <attribute id="0x0005"><sequence><uuid value="0x1002"/></sequence></attribute>
  <attribute id="0x0006"><sequence><uint16 value="0x656e"/><uint16 value="0x006a"/><uint16 value="0x0100"/></sequence></attribute>
  <attribute id="0x0009"><sequence><sequence><uuid value="0x1124"/><uint16 value="0x0101"/></sequence></sequence></attribute>
  <attribute id="0x000d"><sequence><sequence><sequence><uuid value="0x0100"/><uint16 value="0x0013"/></sequence><sequence><uuid value="0x0011"/></sequence></sequence></sequence></attribute>
  <attribute id="0x0100"><text value="OrbelantineHIDDevice"/></attribute>
  <attribute id="0x0101"><text value="Provides HID, Keyboard and mouse"/></attribute>
  <attribute id="0x0102"><text value="Orbelantine"/></attribute>
  <attribute id="0x0201"><uint16 value="0x0111"/></attribute>
  <attribute id="0x0202"><uint8 value="0x40"/></attribute>
  <attribute id="0x0203"><uint8 value="0x00"/></attribute>
  <attribute id="0x0204"><boolean value="true"/></attribute>
  <attribute id="0x0205"><boolean value="true"/></attribute>
  <attribute id="0x0206"><sequence><sequence><uint8 value="0x22"/><text encoding="hex" value="05010902a10185010901a1000509190129031500250175019503810275059501810105010930093109381581257f750895028106c0c005010906a1018502a100050719e029e71500250175019508810295087508150025650507190029658100c0c0"/></sequence></sequence></attribute>
  <attribute id="0x0207"><sequence><sequence><uint16 value="0x0409"/><uint16 value="0x0100"/></sequence></sequence></attribute>
  <attribute id="0x020c"><uint16 value="0x0c80"/></attribute>
  <attribute id="0x020d"><boolean value="false"/></attribute>
  <attribute id="0x020e"><boolean value="false"/></attribute>
</record>
)");
}

TEST_F(ServiceProfileTest, RecordIsPublishedAndWithdrawnAtTheEnd) {
    FakeBlueZ bluez({.bus = mBus.address()});
    publish();
    const stack::Profile profile = bluez.seen().profile;
    EXPECT_EQ(profile.path, "/orbelantine/hid");
    EXPECT_EQ(profile.uuid, "00001124-0000-1000-8000-00805f9b34fb");
    EXPECT_EQ(profile.option<std::string>("ServiceRecord"), kRecord);
    EXPECT_EQ(profile.option<std::string>("Role"), "server");
    EXPECT_TRUE(profile.option<bool>("RequireAuthentication"));
    EXPECT_FALSE(profile.option<bool>("RequireAuthorization"));
    mProfile.reset();
    EXPECT_EQ(bluez.seen().count("UnregisterProfile"), 1);
}

TEST_F(ServiceProfileTest, RefusalAndMissingBlueZAndMissingBusAreToldApart) {
    constexpr std::pair<const char*, const char*> kRefusals[] = {
        {"org.bluez.Error.NotPermitted",
         "another service has the HID record, mostly BlueZ's own input plugin"},
        {"org.bluez.Error.AlreadyExists",
         "another service has the HID record, mostly BlueZ's own input plugin"},
        {"org.freedesktop.DBus.Error.AccessDenied", "D-Bus doesn't let this user reach BlueZ"},
        {"org.freedesktop.DBus.Error.NoReply", "BlueZ doesn't answer"},
        {"org.bluez.Error.InvalidArguments", "BlueZ doesn't take the service record"},
    };
    for (const auto& [error, line] : kRefusals) {
        const FakeBlueZ bluez({.bus = mBus.address(), .profileRefusal = error});
        EXPECT_EQ(failure(), line);
    }
    EXPECT_EQ(failure(), "BlueZ doesn't run");
    mBus.stop();
    EXPECT_EQ(failure(), "D-Bus can't be reached");
}

TEST_F(ServiceProfileTest, CallsOfBlueZAreAnsweredFromTheLoop) {
    FakeBlueZ bluez({.bus = mBus.address()});
    publish();
    std::string rejection;
    std::thread caller([this, &bluez, &rejection] {
        const auto bus = sdbus::createSessionBusConnectionWithAddress(mBus.address());
        const auto profile =
            sdbus::createProxy(*bus, bluez.seen().profile.sender, bluez.seen().profile.path);
        const sdbus::ObjectPath device("/org/bluez/hci0/dev_00_11_22_33_44_55");
        try {
            profile->callMethod("NewConnection")
                .onInterface(kProfile)
                .withArguments(device, sdbus::UnixFd(STDIN_FILENO), stack::Variants{});
        } catch (const sdbus::Error& error) {
            rejection = error.getName();
        }
        profile->callMethod("RequestDisconnection").onInterface(kProfile).withArguments(device);
        profile->callMethod("Release").onInterface(kProfile);
    });
    EXPECT_EQ(said(), "BlueZ has withdrawn the service record, as it does at its end");
    // The last answer still has to go out.
    mProfile.reset();
    caller.join();
    EXPECT_EQ(rejection, "org.bluez.Error.Rejected");
    EXPECT_EQ(bluez.seen().count("UnregisterProfile"), 0) << "withdrawn once more";
}

TEST_F(ServiceProfileTest, CrashOfBlueZAndLostBusAreSaidOnce) {
    std::optional<FakeBlueZ> bluez(std::in_place, FakeBlueZ::Options{.bus = mBus.address()});
    publish();
    bluez.reset();
    EXPECT_EQ(said(), "BlueZ has withdrawn the service record, as it does at its end");
    mBus.stop();
    EXPECT_EQ(said(), "D-Bus has gone, and the service record with it");
    EXPECT_EQ(mProfile->wanted().fd, -1);
    EXPECT_EQ(mProfile->timeout(), -1);
    EXPECT_EQ(mSaid, "");
}

} // namespace orbelantine::bridge
