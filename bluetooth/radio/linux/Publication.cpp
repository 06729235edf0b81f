#include "bluetooth/radio/linux/Publication.h"

#include "core/common/log/Log.h"

#include <sdbus-c++/sdbus-c++.h>

#include <utility>

namespace orbelantine::bluez {

namespace {

constexpr const char* kRecordPath = "/orbelantine/record";
constexpr const char* kRecordName = "Orbelantine";

void tellWithdrawn() {
    ORB_LOG(kLogWarning, "%s() BlueZ has gone: a service record is withdrawn until it is back");
}

void tellBusLost() {
    ORB_LOG(kLogWarning, "%s() D-Bus has gone, and a service record with it");
}

} // namespace

Publication::Publication(const std::string& bus, boost::asio::io_context& ioService,
                         SdpRecord record)
    : mBus(bus)
    , mProfile(mBus, {kRecordPath, kRecordName, std::move(record.uuid), std::move(record.xml)},
               {tellWithdrawn, [this] { publishAgain(); }})
    , mLoop(std::make_shared<dbus::BusLoop>(mBus, ioService, tellBusLost)) {}

void Publication::publish() {
    mProfile.publish();
    mLoop->process();
}

void Publication::publishAgain() {
    try {
        mProfile.publish();
    } catch (const sdbus::Error& error) {
        ORB_LOG(kLogError, "%s() BlueZ is back and doesn't take the service record: %s",
                error.what());
    }
}

} // namespace orbelantine::bluez
