#include "bluetooth/dbus/linux/Profile.h"

#include "bluetooth/dbus/linux/BlueZNames.h"
#include "bluetooth/dbus/linux/Bus.h"

#include <sdbus-c++/sdbus-c++.h>

#include <map>
#include <utility>

namespace orbelantine::dbus {

namespace {

using ProfileOptions = std::map<std::string, sdbus::Variant>;

} // namespace

Profile::Profile(Bus& bus, Setting setting, Events events)
    : mBus(bus)
    , mSetting(std::move(setting))
    , mEvents(std::move(events)) {
    implement();
    mManager = mBus.blueZ(kBlueZPath);
    mBus.watchOwner(kBlueZ, [this](const std::string& owner) { ownerChanged(owner); });
}

Profile::~Profile() {
    if (!mPublished || mBus.lost())
        return;
    try {
        mManager->callMethod("UnregisterProfile")
            .onInterface(kProfileManager)
            .withArguments(sdbus::ObjectPath(mSetting.path));
    } catch (const sdbus::Error&) {
        // BlueZ drops the record by itself when the connection ends.
    }
}

void Profile::publish() {
    const ProfileOptions options = {
        {"Name", sdbus::Variant(mSetting.name)},
        {"Role", sdbus::Variant(std::string("server"))},
        {"RequireAuthentication", sdbus::Variant(true)},
        {"RequireAuthorization", sdbus::Variant(false)},
        {"AutoConnect", sdbus::Variant(false)},
        {"ServiceRecord", sdbus::Variant(mSetting.recordXml)},
    };
    mManager->callMethod("RegisterProfile")
        .onInterface(kProfileManager)
        .withArguments(sdbus::ObjectPath(mSetting.path), mSetting.uuid, options);
    mPublished = true;
}

void Profile::implement() {
    mObject = sdbus::createObject(mBus.connection(), mSetting.path);
    mObject->registerMethod("Release").onInterface(kProfile).implementedAs([this] { withdrawn(); });
    // Whoever publishes a record opens or takes its channels elsewhere.
    mObject->registerMethod("NewConnection")
        .onInterface(kProfile)
        .implementedAs([](const sdbus::ObjectPath&, const sdbus::UnixFd&, const ProfileOptions&) {
            throw sdbus::Error(kRejected, "only the record is offered here");
        });
    mObject->registerMethod("RequestDisconnection")
        .onInterface(kProfile)
        .implementedAs([](const sdbus::ObjectPath&) {});
    mObject->finishRegistration();
}

void Profile::ownerChanged(const std::string& owner) {
    // One that crashes doesn't release what it has; one that publish() has started has it already.
    if (owner.empty())
        withdrawn();
    else if (!mPublished && mEvents.onBlueZ)
        mEvents.onBlueZ();
}

void Profile::withdrawn() {
    if (std::exchange(mPublished, false) && mEvents.onWithdrawn)
        mEvents.onWithdrawn();
}

} // namespace orbelantine::dbus
