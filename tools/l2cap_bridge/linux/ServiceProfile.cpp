#include "tools/l2cap_bridge/linux/ServiceProfile.h"

#include "tools/l2cap_bridge/linux/Errors.h"

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <utility>

namespace orbelantine::bridge {

namespace {

using Variants = std::map<std::string, sdbus::Variant>;

constexpr const char* kHidUuid = "00001124-0000-1000-8000-00805f9b34fb";
constexpr const char* kProfilePath = "/orbelantine/hid";
constexpr const char* kBus = "org.freedesktop.DBus";
constexpr const char* kBlueZ = "org.bluez";
constexpr const char* kProfile = "org.bluez.Profile1";
constexpr const char* kManager = "org.bluez.ProfileManager1";
constexpr std::chrono::seconds kLongestCall{5};

std::unique_ptr<sdbus::IConnection> connectTo(const std::string& bus) {
    return bus.empty() ? sdbus::createSystemBusConnection()
                       : sdbus::createSessionBusConnectionWithAddress(bus);
}

} // namespace

ServiceProfile::ServiceProfile(const std::string& bus, const std::string& recordXml, Say say)
    : mSay(std::move(say)) {
    try {
        mConnection = connectTo(bus);
        mConnection->setMethodCallTimeout(kLongestCall);
        implementProfile();
        watchBlueZ();
        registerProfile(recordXml);
    } catch (const sdbus::Error& error) {
        throw RecordError(recordAdvice(error.getName(), error.getMessage()));
    }
}

ServiceProfile::~ServiceProfile() {
    if (!mPublished || mBusLost)
        return;
    try {
        mManager->callMethod("UnregisterProfile")
            .onInterface(kManager)
            .withArguments(sdbus::ObjectPath(kProfilePath));
    } catch (const sdbus::Error&) {
        // BlueZ drops the record by itself when the connection ends.
    }
}

pollfd ServiceProfile::wanted() {
    // What came in while a call waited for its answer no longer shows in the descriptor.
    process();
    if (mBusLost)
        return {-1, 0, 0};
    const auto data = mConnection->getEventLoopPollData();
    return {data.fd, data.events, 0};
}

int ServiceProfile::timeout() {
    return mBusLost ? -1 : mConnection->getEventLoopPollData().getPollTimeout();
}

void ServiceProfile::process() {
    if (mBusLost)
        return;
    try {
        while (mConnection->processPendingRequest()) {
        }
    } catch (const sdbus::Error&) {
        mBusLost = true;
        mSay("D-Bus has gone, and the service record with it: phones that are paired still "
             "connect; start this again once D-Bus is back");
    }
}

void ServiceProfile::implementProfile() {
    mProfile = sdbus::createObject(*mConnection, kProfilePath);
    mProfile->registerMethod("Release").onInterface(kProfile).implementedAs([this] { released(); });
    // The bridge connects to the phone, never the other way round.
    mProfile->registerMethod("NewConnection")
        .onInterface(kProfile)
        .implementedAs([](const sdbus::ObjectPath&, const sdbus::UnixFd&, const Variants&) {
            throw sdbus::Error("org.bluez.Error.Rejected", "this end opens the channels");
        });
    mProfile->registerMethod("RequestDisconnection")
        .onInterface(kProfile)
        .implementedAs([](const sdbus::ObjectPath&) {});
    mProfile->finishRegistration();
}

// One that crashes doesn't release what it has.
void ServiceProfile::watchBlueZ() {
    mBus = sdbus::createProxy(*mConnection, kBus, "/org/freedesktop/DBus");
    mBus->uponSignal("NameOwnerChanged")
        .onInterface(kBus)
        .call([this](const std::string& name, const std::string&, const std::string& owner) {
            if (name == kBlueZ && owner.empty() && mPublished)
                released();
        });
    mBus->finishRegistration();
}

void ServiceProfile::registerProfile(const std::string& recordXml) {
    mManager = sdbus::createProxy(*mConnection, kBlueZ, "/org/bluez");
    const Variants options = {
        {"Name", sdbus::Variant(std::string("Orbelantine HID"))},
        {"Role", sdbus::Variant(std::string("server"))},
        {"RequireAuthentication", sdbus::Variant(true)},
        {"RequireAuthorization", sdbus::Variant(false)},
        {"AutoConnect", sdbus::Variant(false)},
        {"ServiceRecord", sdbus::Variant(recordXml)},
    };
    mManager->callMethod("RegisterProfile")
        .onInterface(kManager)
        .withArguments(sdbus::ObjectPath(kProfilePath), std::string(kHidUuid), options);
    mPublished = true;
}

void ServiceProfile::released() {
    mPublished = false;
    mSay("BlueZ has withdrawn the service record, as it does at its end: phones that are paired "
         "still connect; start this again once bluetoothd runs");
}

} // namespace orbelantine::bridge
