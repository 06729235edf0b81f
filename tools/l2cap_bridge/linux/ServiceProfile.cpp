#include "tools/l2cap_bridge/linux/ServiceProfile.h"

#include "bluetooth/dbus/linux/BlueZNames.h"
#include "tools/l2cap_bridge/linux/Errors.h"

#include <sdbus-c++/sdbus-c++.h>

#include <map>
#include <utility>

namespace orbelantine::bridge {

namespace {

using Variants = std::map<std::string, sdbus::Variant>;

constexpr const char* kHidUuid = "00001124-0000-1000-8000-00805f9b34fb";
constexpr const char* kProfilePath = "/orbelantine/hid";
} // namespace

ServiceProfile::ServiceProfile(const std::string& bus, const std::string& recordXml, Say say)
    : mSay(std::move(say)) {
    try {
        mBus = std::make_unique<dbus::Bus>(bus);
        implementProfile();
        // One that crashes doesn't release what it has.
        mBus->watchOwner(dbus::kBlueZ, [this](const std::string& owner) {
            if (owner.empty() && mPublished)
                released();
        });
        registerProfile(recordXml);
    } catch (const sdbus::Error& error) {
        throw RecordError(recordAdvice(error.getName(), error.getMessage()));
    }
}

ServiceProfile::~ServiceProfile() {
    if (!mPublished || mBus->lost())
        return;
    try {
        mManager->callMethod("UnregisterProfile")
            .onInterface(dbus::kProfileManager)
            .withArguments(sdbus::ObjectPath(kProfilePath));
    } catch (const sdbus::Error&) {
        // BlueZ drops the record by itself when the connection ends.
    }
}

pollfd ServiceProfile::wanted() {
    // What came in while a call waited for its answer doesn't show in the descriptor.
    process();
    return mBus->wanted();
}

int ServiceProfile::timeout() {
    return mBus->pollTimeout();
}

void ServiceProfile::process() {
    if (mBus->lost() || mBus->process() != dbus::Bus::State::Lost)
        return;
    mSay("D-Bus has gone, and the service record with it: phones that are paired still connect; "
         "start this again once D-Bus is back");
}

void ServiceProfile::implementProfile() {
    mProfile = sdbus::createObject(mBus->connection(), kProfilePath);
    mProfile->registerMethod("Release").onInterface(dbus::kProfile).implementedAs([this] {
        released();
    });
    // The bridge connects to the phone, never the other way round.
    mProfile->registerMethod("NewConnection")
        .onInterface(dbus::kProfile)
        .implementedAs([](const sdbus::ObjectPath&, const sdbus::UnixFd&, const Variants&) {
            throw sdbus::Error(dbus::kRejected, "this end opens the channels");
        });
    mProfile->registerMethod("RequestDisconnection")
        .onInterface(dbus::kProfile)
        .implementedAs([](const sdbus::ObjectPath&) {});
    mProfile->finishRegistration();
}

void ServiceProfile::registerProfile(const std::string& recordXml) {
    mManager = mBus->blueZ(dbus::kBlueZPath);
    const Variants options = {
        {"Name", sdbus::Variant(std::string("Orbelantine HID"))},
        {"Role", sdbus::Variant(std::string("server"))},
        {"RequireAuthentication", sdbus::Variant(true)},
        {"RequireAuthorization", sdbus::Variant(false)},
        {"AutoConnect", sdbus::Variant(false)},
        {"ServiceRecord", sdbus::Variant(recordXml)},
    };
    mManager->callMethod("RegisterProfile")
        .onInterface(dbus::kProfileManager)
        .withArguments(sdbus::ObjectPath(kProfilePath), std::string(kHidUuid), options);
    mPublished = true;
}

void ServiceProfile::released() {
    mPublished = false;
    mSay("BlueZ has withdrawn the service record, as it does at its end: phones that are paired "
         "still connect; start this again once bluetoothd runs");
}

} // namespace orbelantine::bridge
