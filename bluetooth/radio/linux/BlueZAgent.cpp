#include "bluetooth/radio/linux/BlueZAgent.h"

#include "bluetooth/dbus/linux/BlueZNames.h"
#include "bluetooth/dbus/linux/Bus.h"
#include "bluetooth/radio/linux/BlueZObjects.h"
#include "core/common/log/Log.h"
#include "core/common/run/IDelayTimer.h"

#include <boost/system/error_code.hpp>

#include <utility>

namespace orbelantine::bluez {

namespace {

using Path = sdbus::ObjectPath;

/// False if the one who asked has gone.
bool answerNo(const sdbus::Result<>& answer, const char* error) {
    try {
        answer.returnError(sdbus::Error(error, "it is not agreed to"));
        return true;
    } catch (const sdbus::Error&) {
        return false;
    }
}

bool answerYes(const sdbus::Result<>& answer) {
    try {
        answer.returnResults();
        return true;
    } catch (const sdbus::Error&) {
        return false;
    }
}

} // namespace

BlueZAgent::BlueZAgent(dbus::Bus& bus, const BlueZObjects& objects, IClock& clock,
                       boost::asio::io_context& ioService, OnRequest onRequest)
    : mObjects(objects)
    , mClock(clock)
    , mIoService(ioService)
    , mOnRequest(std::move(onRequest))
    , mObject(sdbus::createObject(bus.connection(), kPath)) {
    implementRequests();
    implementRest();
    mObject->finishRegistration();
}

BlueZAgent::~BlueZAgent() {
    refuseAll(dbus::kCanceled);
}

bool BlueZAgent::approve(const CMacAddress& address) {
    auto request = mRequests.extract(address.getUllAddress());
    if (request.empty() || address.isEmpty())
        return false;
    request.mapped().timer->cancel();
    mApproved.insert(request.key());
    return answerYes(request.mapped().answer);
}

void BlueZAgent::forget(const CMacAddress& address) {
    mApproved.erase(address.getUllAddress());
}

void BlueZAgent::refuseAll(const char* error) {
    while (!mRequests.empty())
        refuse(mRequests.begin()->first, error);
}

void BlueZAgent::implementRequests() {
    mObject->registerMethod("RequestConfirmation")
        .onInterface(dbus::kAgent)
        .implementedAs([this](Answer&& answer, const Path& device, std::uint32_t) {
            ask(std::move(answer), device);
        });
    mObject->registerMethod("RequestAuthorization")
        .onInterface(dbus::kAgent)
        .implementedAs(
            [this](Answer&& answer, const Path& device) { ask(std::move(answer), device); });
    mObject->registerMethod("AuthorizeService")
        .onInterface(dbus::kAgent)
        .implementedAs([this](Answer&& answer, const Path& device, const std::string&) {
            authorizeService(std::move(answer), device);
        });
    mObject->registerMethod("Cancel").onInterface(dbus::kAgent).implementedAs([this] {
        checkCaller();
        refuseAll(dbus::kCanceled);
    });
    mObject->registerMethod("Release").onInterface(dbus::kAgent).implementedAs([this] {
        checkCaller();
        refuseAll(dbus::kCanceled);
    });
}

// There is no keyboard here to type a number on.
void BlueZAgent::implementRest() {
    const auto show = [this] {
        checkCaller();
        ORB_LOG(kLogInfo, "%s() a device waits for a number to be typed on it");
    };
    const auto refuseNumber = [this] {
        checkCaller();
        ORB_LOG(kLogInfo, "%s() a device that wants a number from us is refused");
        throw sdbus::Error(dbus::kRejected, "there is no keyboard here");
    };
    mObject->registerMethod("DisplayPinCode")
        .onInterface(dbus::kAgent)
        .implementedAs([show](const Path&, const std::string&) { show(); });
    mObject->registerMethod("DisplayPasskey")
        .onInterface(dbus::kAgent)
        .implementedAs([show](const Path&, std::uint32_t, std::uint16_t) { show(); });
    mObject->registerMethod("RequestPinCode")
        .onInterface(dbus::kAgent)
        .implementedAs([refuseNumber](const Path&) -> std::string {
            refuseNumber();
            return {};
        });
    mObject->registerMethod("RequestPasskey")
        .onInterface(dbus::kAgent)
        .implementedAs([refuseNumber](const Path&) -> std::uint32_t {
            refuseNumber();
            return 0;
        });
}

void BlueZAgent::authorizeService(Answer answer, const std::string& path) {
    if (mApproved.contains(callingDevice(path).address.getUllAddress()))
        answer.returnResults();
    else
        ask(std::move(answer), path);
}

void BlueZAgent::ask(Answer answer, const std::string& path) {
    const Device& device = callingDevice(path);
    const std::uint64_t address = device.address.getUllAddress();
    refuse(address, dbus::kCanceled);
    Request& request = mRequests[address];
    request.answer = std::move(answer);
    refuseLater(address, request);
    mOnRequest(device);
}

void BlueZAgent::refuseLater(std::uint64_t address, Request& request) {
    request.timer = mClock.makeTimer(mIoService, laterBy(mClock.now(), kLongestRequest));
    // It has no successful end but while the request is open.
    request.timer->asyncWait([this, address](const boost::system::error_code& ec) {
        if (ec)
            return;
        ORB_LOG(kLogInfo, "%s() a device that nobody has answered is refused");
        refuse(address, dbus::kRejected);
    });
}

void BlueZAgent::refuse(std::uint64_t address, const char* error) {
    const auto request = mRequests.extract(address);
    if (request.empty())
        return;
    request.mapped().timer->cancel();
    if (!answerNo(request.mapped().answer, error))
        ORB_LOG(kLogDebug, "%s() whoever asked has gone");
}

const Device& BlueZAgent::callingDevice(const std::string& path) const {
    checkCaller();
    const Device* const device = mObjects.table().findDevice(path);
    if (device == nullptr || device->address.isEmpty())
        throw sdbus::Error(dbus::kRejected, "there is no such device");
    return *device;
}

void BlueZAgent::checkCaller() const {
    if (mObject->getCurrentlyProcessedMessage()->getSender() != mObjects.owner())
        throw sdbus::Error("org.freedesktop.DBus.Error.AccessDenied", "this is for BlueZ");
}

} // namespace orbelantine::bluez
