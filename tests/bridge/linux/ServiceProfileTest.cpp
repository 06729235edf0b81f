#include "tools/l2cap_bridge/linux/ServiceProfile.h"

#include "tests/bridge/linux/PrivateBus.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <optional>
#include <thread>

/// sdbus-c++ 1.2 doesn't free a connection that it couldn't open; asked by the leak sanitiser
/// alone.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:sd_bus_new\n";
}

namespace orbelantine::bridge {

namespace {

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

    /// Lets the profile run as the bridge's loop does, until `done`.
    template <typename Condition>
    bool runUntil(const Condition& done) {
        for (int i = 0; i < 100 && !done(); ++i) {
            pollfd place = mProfile->wanted();
            ::poll(&place, 1, 50);
            mProfile->process();
        }
        return done();
    }

    PrivateBus mBus;
    std::string mSaid;
    std::optional<ServiceProfile> mProfile;
};

} // namespace

TEST_F(ServiceProfileTest, RecordIsPublishedAndWithdrawnAtTheEnd) {
    FakeBlueZ bluez(mBus.address());
    publish();
    EXPECT_EQ(bluez.path(), "/orbelantine/hid");
    EXPECT_EQ(bluez.uuid(), "00001124-0000-1000-8000-00805f9b34fb");
    EXPECT_EQ(bluez.option<std::string>("ServiceRecord"), kRecord);
    EXPECT_EQ(bluez.option<std::string>("Role"), "server");
    EXPECT_TRUE(bluez.option<bool>("RequireAuthentication"));
    EXPECT_FALSE(bluez.option<bool>("RequireAuthorization"));
    mProfile.reset();
    EXPECT_EQ(bluez.path(), "");
}

TEST_F(ServiceProfileTest, RefusalSaysWhatToDo) {
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
        const FakeBlueZ bluez(mBus.address(), error);
        EXPECT_EQ(failure(), line);
    }
}

TEST_F(ServiceProfileTest, MissingBlueZAndMissingBusAreToldApart) {
    EXPECT_EQ(failure(), "BlueZ doesn't run");
    mBus.stop();
    EXPECT_EQ(failure(), "D-Bus can't be reached");
}

TEST_F(ServiceProfileTest, CallsOfBlueZAreAnsweredFromTheLoop) {
    FakeBlueZ bluez(mBus.address());
    publish();
    std::string rejection;
    std::thread caller([this, &bluez, &rejection] {
        const auto bus = sdbus::createSessionBusConnectionWithAddress(mBus.address());
        const auto profile = sdbus::createProxy(*bus, bluez.sender(), bluez.path());
        const sdbus::ObjectPath device("/org/bluez/hci0/dev_00_11_22_33_44_55");
        try {
            profile->callMethod("NewConnection")
                .onInterface(kProfile)
                .withArguments(device, sdbus::UnixFd(STDIN_FILENO), FakeBlueZ::Options{});
        } catch (const sdbus::Error& error) {
            rejection = error.getName();
        }
        profile->callMethod("RequestDisconnection").onInterface(kProfile).withArguments(device);
        profile->callMethod("Release").onInterface(kProfile);
    });
    EXPECT_TRUE(runUntil([this] { return !mSaid.empty(); }));
    // The last answer still has to go out.
    mProfile.reset();
    caller.join();
    EXPECT_EQ(rejection, "org.bluez.Error.Rejected");
    EXPECT_EQ(mSaid, "BlueZ has withdrawn the service record, as it does at its end");
    EXPECT_EQ(bluez.path(), "/orbelantine/hid") << "withdrawn once more";
}

TEST_F(ServiceProfileTest, LostBusIsSaidOnce) {
    std::optional<FakeBlueZ> bluez(std::in_place, mBus.address());
    publish();
    bluez.reset();
    mBus.stop();
    EXPECT_TRUE(runUntil([this] { return !mSaid.empty(); }));
    EXPECT_EQ(mSaid, "D-Bus has gone, and the service record with it");
    mSaid.clear();
    EXPECT_EQ(mProfile->wanted().fd, -1);
    EXPECT_EQ(mProfile->timeout(), -1);
    EXPECT_EQ(mSaid, "");
}

} // namespace orbelantine::bridge
