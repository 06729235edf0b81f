#include "tools/virtual_stack/linux/FakeBlueZ.h"

#include "tools/virtual_stack/linux/BusThread.h"
#include "tools/virtual_stack/linux/PrivateBus.h"

#include <gtest/gtest.h>
#include <sdbus-c++/sdbus-c++.h>

#include <atomic>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace orbelantine::stack {

namespace {

constexpr const char* kAdapterPath = "/org/bluez/hci0";
constexpr const char* kPhonePath = "/org/bluez/hci0/dev_00_11_22_33_44_55";
constexpr const char* kPhone = "00:11:22:33:44:55";

/// A client of the stack, with an agent that agrees until it is told otherwise.
class Client {
  public:
    explicit Client(const std::string& bus)
        : mConnection(sdbus::createSessionBusConnectionWithAddress(bus)) {
        mAgent = sdbus::createObject(*mConnection, "/agent");
        mAgent->registerMethod("RequestConfirmation")
            .onInterface("org.bluez.Agent1")
            .implementedAs([this](const sdbus::ObjectPath&, std::uint32_t) {
                if (refuses)
                    throw sdbus::Error("org.bluez.Error.Rejected", "no");
            });
        mAgent->finishRegistration();
        mThread.run([this] { mThread.serve(mConnection.get()); });
    }

    ~Client() {
        mThread.run([this] { mThread.serve(nullptr); });
    }

    /// The error's name; empty if there is none.
    template <class... Arguments>
    std::string call(const std::string& path, const std::string& interface,
                     const std::string& method, Arguments... arguments) {
        std::promise<std::string> ended;
        std::unique_ptr<sdbus::IProxy> proxy;
        mThread.run([&] {
            proxy = sdbus::createProxy(*mConnection, "org.bluez", path);
            proxy->callMethodAsync(method)
                .onInterface("org.bluez." + interface)
                .withArguments(arguments...)
                .uponReplyInvoke([&ended](const sdbus::Error* error) {
                    ended.set_value(error == nullptr ? "" : error->getName());
                });
        });
        std::string error = ended.get_future().get();
        mThread.run([&] { proxy.reset(); });
        return error.substr(error.rfind('.') + 1);
    }

    std::map<sdbus::ObjectPath, std::map<std::string, Variants>> objects() {
        return mThread.run([this] {
            std::map<sdbus::ObjectPath, std::map<std::string, Variants>> found;
            sdbus::createProxy(*mConnection, "org.bluez", "/")
                ->callMethod("GetManagedObjects")
                .onInterface("org.freedesktop.DBus.ObjectManager")
                .storeResultsTo(found);
            return found;
        });
    }

    std::atomic<bool> refuses = false;

  private:
    std::unique_ptr<sdbus::IConnection> mConnection;
    std::unique_ptr<sdbus::IObject> mAgent;
    BusThread mThread{[] {}};
};

class FakeBlueZTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!mBus.runs())
            GTEST_SKIP() << "dbus-daemon is not installed";
        mStack = std::make_unique<FakeBlueZ>(FakeBlueZ::Options{.bus = mBus.address()});
        mStack->addAdapter();
        mStack->addDevice({.address = kPhone, .name = "Phone"});
        mClient = std::make_unique<Client>(mBus.address());
    }

    std::string adapter(const std::string& method) {
        return mClient->call(kAdapterPath, "Adapter1", method);
    }

    Variants phone() { return mClient->objects()[kPhonePath]["org.bluez.Device1"]; }

    PrivateBus mBus;
    std::unique_ptr<FakeBlueZ> mStack;
    std::unique_ptr<Client> mClient;
};

} // namespace

TEST_F(FakeBlueZTest, InquiryFindsWhatIsNearAndItsSignalGoesWithTheInquirysEnd) {
    mStack->addDevice({.address = "00:00:00:00:00:01", .inRange = false});
    EXPECT_EQ(mClient->objects().size(), 2U) << "the adapter and the root of profiles and agents";
    EXPECT_EQ(adapter("StopDiscovery"), "Failed");
    EXPECT_EQ(adapter("StartDiscovery"), "");
    EXPECT_EQ(adapter("StartDiscovery"), "InProgress");
    EXPECT_EQ(mClient->objects().size(), 3U);
    EXPECT_EQ(phone().at("Alias").get<std::string>(), "Phone");
    EXPECT_EQ(phone().at("RSSI").get<std::int16_t>(), -60);
    EXPECT_EQ(adapter("StopDiscovery"), "");
    EXPECT_EQ(phone().count("RSSI"), 0U);
    mStack->dropFound();
    EXPECT_EQ(mClient->objects().size(), 2U);
    mStack->power(false);
    EXPECT_EQ(adapter("StartDiscovery"), "NotReady");
}

TEST_F(FakeBlueZTest, PhoneIsPairedOnceAgentAndPhoneAgree) {
    const auto pair = [this] { return mClient->call(kPhonePath, "Device1", "Pair"); };
    EXPECT_EQ(mClient->call("/org/bluez", "AgentManager1", "RegisterAgent",
                            sdbus::ObjectPath("/agent"), std::string("DisplayYesNo")),
              "");
    EXPECT_EQ(adapter("StartDiscovery"), "");
    mClient->refuses = true;
    EXPECT_EQ(pair(), "AuthenticationFailed");
    mClient->refuses = false;
    mStack->addDevice({.address = kPhone, .decision = Decision::Refuses});
    EXPECT_EQ(pair(), "AuthenticationRejected");
    EXPECT_FALSE(phone().at("Paired").get<bool>());
    mStack->addDevice({.address = kPhone});
    EXPECT_EQ(pair(), "");
    EXPECT_TRUE(phone().at("Paired").get<bool>());
    EXPECT_EQ(pair(), "AlreadyExists");
    EXPECT_EQ(mStack->seen().count("answered"), 3U);
}

TEST_F(FakeBlueZTest, WhatIsKnownComesBackAndWhoLeavesIsForgotten) {
    mStack->addDevice({.address = kPhone, .paired = true});
    EXPECT_EQ(adapter("StartDiscovery"), "");
    mStack->restart();
    EXPECT_TRUE(phone().at("Paired").get<bool>());
    EXPECT_EQ(adapter("StartDiscovery"), "");
    mClient.reset();
    EXPECT_TRUE(mStack->waitUntil([](const Seen& seen) { return seen.discoverers.empty(); }));
    mBus.stop();
    mStack->phoneAsks(kPhone);
    mStack->removeAdapter();
}

} // namespace orbelantine::stack
