#include "tools/l2cap_bridge/linux/ServiceProfile.h"

#include "tools/l2cap_bridge/linux/Errors.h"

#include <sdbus-c++/sdbus-c++.h>

#include <utility>

namespace orbelantine::bridge {

namespace {

constexpr const char* kHidUuid = "00001124-0000-1000-8000-00805f9b34fb";
constexpr const char* kProfilePath = "/orbelantine/hid";
constexpr const char* kWithdrawn =
    "BlueZ has withdrawn the service record, as it does at its end: phones that are paired still "
    "connect; start this again once bluetoothd runs";

} // namespace

ServiceProfile::ServiceProfile(const std::string& bus, const std::string& recordXml, Say say)
    : mSay(std::move(say)) {
    try {
        mBus = std::make_unique<dbus::Bus>(bus);
        mProfile = std::make_unique<dbus::Profile>(
            *mBus, dbus::Profile::Setting{kProfilePath, "Orbelantine HID", kHidUuid, recordXml},
            dbus::Profile::Events{[this] { mSay(kWithdrawn); }, nullptr});
        mProfile->publish();
    } catch (const sdbus::Error& error) {
        throw RecordError(recordAdvice(error.getName(), error.getMessage()));
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

} // namespace orbelantine::bridge
