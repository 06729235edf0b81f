#include "bluetooth/radio/linux/BlueZSession.h"

#include "bluetooth/dbus/linux/BlueZNames.h"
#include "bluetooth/radio/linux/BlueZErrors.h"
#include "core/common/errors/GenericError.h"
#include "core/common/log/Log.h"
#include "core/common/run/FireSafely.h"

#include <chrono>
#include <exception>

namespace orbelantine::bluez {

namespace {

/// As long as a user may take on both sides.
constexpr std::chrono::minutes kLongestPairing{2};

error_code networkDown() {
    return genericError(generic::kNetworkDown);
}

/// The code of a call that has failed, logged.
error_code failureOf(const char* call, const sdbus::Error& error) {
    const error_code ec = errorOf(error.getName());
    ORB_LOG(kLogError, "%s: %s error. Error: %d (%s)", call, ec.value(), error.what());
    return ec;
}

} // namespace

void BlueZSession::connect(std::function<void()> onReady) {
    mOnReady = std::move(onReady);
    try {
        mLink = std::make_unique<BlueZLink>(mSetting.bus, mSetting.clock, mSetting.queue->ioService,
                                            events(), [this] { busLost(); });
        if (mSetting.withAgent)
            makeAgent();
        mLink->objects.read();
    } catch (const std::exception& e) {
        mLink.reset();
        ORB_LOG(kLogInfo, "%s() there is no Bluetooth here: D-Bus can't be used: %s", e.what());
        ready();
    }
}

void BlueZSession::close() {
    if (!std::exchange(mOpen, false))
        return;
    radioOff();
    if (!mLink)
        return;
    mLink->inquiry.abandon();
    if (std::exchange(mLink->agent, nullptr))
        mLink->calls.tell({dbus::kBlueZPath, dbus::kAgentManager, "UnregisterAgent"},
                          sdbus::ObjectPath(BlueZAgent::kPath));
    mLink.reset();
}

void BlueZSession::rescan(const Completion& completion) {
    const std::string adapter = radio();
    if (adapter.empty())
        return finish(completion, networkDown());
    report(mLink->objects.table().devices(adapter,
                                          [](const Device& device) { return device.known(); }),
           completion, {});
}

void BlueZSession::discover(const Completion& completion, std::uint16_t length) {
    const std::string adapter = radio();
    if (adapter.empty())
        return finish(completion, networkDown());
    mLink->inquiry.run(adapter, length,
                       [this, completion](error_code ec, const std::vector<Device>& found) {
                           report(found, completion, ec);
                       });
}

void BlueZSession::pair(const CMacAddress& address, const Completion& completion) {
    const std::string device = deviceOf(address, "Pair", completion);
    if (!device.empty())
        mLink->calls.call({device, dbus::kDevice, "Pair", kLongestPairing},
                          completing("Pair", completion));
}

void BlueZSession::approve(const CMacAddress& address, const Completion& completion) {
    if (radio().empty())
        return finish(completion, networkDown());
    if (mLink->agent && mLink->agent->approve(address))
        return finish(completion, {});
    ORB_LOG(kLogError, "%s: MAC address mismatch");
    finish(completion, genericError(generic::kBadAddress));
}

void BlueZSession::unpair(const CMacAddress& address, const Completion& completion) {
    const std::string device = deviceOf(address, "RemoveDevice", completion);
    if (device.empty())
        return;
    if (mLink->agent)
        mLink->agent->forget(address);
    mLink->calls.call({radio(), dbus::kAdapter, "RemoveDevice"},
                      completing("RemoveDevice", completion), sdbus::ObjectPath(device));
}

error_code BlueZSession::setDiscoverable(bool discoverable) {
    const std::string adapter = radio();
    if (adapter.empty())
        return networkDown();
    try {
        const auto object = mLink->bus.blueZ(adapter);
        if (discoverable)
            object->setProperty("DiscoverableTimeout")
                .onInterface(dbus::kAdapter)
                .toValue(std::uint32_t{0});
        object->setProperty("Discoverable").onInterface(dbus::kAdapter).toValue(discoverable);
    } catch (const sdbus::Error& error) {
        return failureOf("Discoverable", error);
    }
    // The signal comes later; who asks next is to hear of it already.
    mLink->objects.table().change(adapter, dbus::kAdapter,
                                  {{"Discoverable", sdbus::Variant(discoverable)}}, {});
    publish();
    return {};
}

BlueZObjects::Events BlueZSession::events() {
    return {[this] { objectsRead(); }, [this](const sdbus::Error& error) { objectsUnread(error); },
            [this] { blueZGone(); }, [this] { adaptersChanged(); },
            [this](const CMacAddress& address) {
                if (mLink->agent)
                    mLink->agent->forget(address);
            }};
}

void BlueZSession::objectsRead() {
    mToldUnread = false;
    adaptersChanged();
    if (mLink->agent)
        registerAgent();
    else
        ready();
}

void BlueZSession::registerAgent() {
    const sdbus::ObjectPath agent(BlueZAgent::kPath);
    mLink->calls.call(
        {dbus::kBlueZPath, dbus::kAgentManager, "RegisterAgent"},
        [this](const sdbus::Error* error, const sdbus::MethodReply&) {
            agentRegistered("RegisterAgent", error);
        },
        agent, std::string(BlueZAgent::kCapability));
    mLink->calls.call(
        {dbus::kBlueZPath, dbus::kAgentManager, "RequestDefaultAgent"},
        [this](const sdbus::Error* error, const sdbus::MethodReply&) {
            agentRegistered("RequestDefaultAgent", error);
            ready();
        },
        agent);
}

void BlueZSession::agentRegistered(const char* call, const sdbus::Error* error) {
    if (error != nullptr)
        ORB_LOG(kLogError, "%s: unable to register for incoming auth notifications. Error: %d",
                failureOf(call, *error).value());
}

void BlueZSession::objectsUnread(const sdbus::Error& error) {
    if (!std::exchange(mToldUnread, true))
        ORB_LOG(kLogInfo, "%s() there is no Bluetooth here: BlueZ can't be used: %s", error.what());
    ready();
}

void BlueZSession::ready() {
    if (const auto onReady = std::exchange(mOnReady, nullptr))
        onReady();
}

void BlueZSession::blueZGone() {
    if (mSetting.radio->get().on)
        ORB_LOG(kLogWarning, "%s() BlueZ has gone: Bluetooth is off until it is back");
    adaptersChanged();
    mLink->calls.abandon();
    if (mLink->agent)
        mLink->agent->refuseAll(dbus::kCanceled);
}

void BlueZSession::busLost() {
    ORB_LOG(kLogWarning, "%s() D-Bus has gone: Bluetooth is off until the next start");
    radioOff();
    mLink->inquiry.abandon();
    mLink->calls.abandon();
    mLink.reset();
    ready();
}

void BlueZSession::adaptersChanged() {
    publish();
    mLink->inquiry.checkAdapter();
}

void BlueZSession::publish() {
    const auto* const entry = mLink->objects.table().adapter();
    if (entry == nullptr)
        return radioOff();
    const Adapter& adapter = entry->second;
    mSetting.radio->change([&](Radio& radio) {
        radio = {adapter.powered, adapter.powered && adapter.discoverable, adapter.alias,
                 adapter.address};
    });
}

void BlueZSession::radioOff() {
    mSetting.radio->change([](Radio& radio) { radio.on = radio.discoverable = false; });
}

void BlueZSession::makeAgent() {
    mLink->agent = std::make_unique<BlueZAgent>(
        mLink->bus, mLink->objects, mSetting.clock, mSetting.queue->ioService,
        [this](const Device& device) {
            post([this, device] {
                fireSafely(mSetting.owner.onAuthenticationRequest, device.address,
                           device.shownName(), static_cast<unsigned long>(device.deviceClass));
            });
        });
}

std::string BlueZSession::radio() const {
    const auto* const adapter = mLink ? mLink->objects.table().adapter() : nullptr;
    return adapter != nullptr && adapter->second.powered ? adapter->first : "";
}

std::string BlueZSession::deviceOf(const CMacAddress& address, const char* call,
                                   const Completion& completion) {
    const std::string adapter = radio();
    if (adapter.empty()) {
        finish(completion, networkDown());
        return "";
    }
    std::string path = mLink->objects.table().pathOf(adapter, address);
    if (path.empty()) {
        const int number = win32::kErrorNotFound;
        ORB_LOG(kLogError, "%s: %s error. Error: %d (BlueZ knows no such device)", call, number);
        finish(completion, genericError(number));
    }
    return path;
}

dbus::Calls::Done BlueZSession::completing(const char* call, const Completion& completion) {
    return [this, call, completion](const sdbus::Error* error, const sdbus::MethodReply&) {
        finish(completion, error == nullptr ? error_code() : failureOf(call, *error));
    };
}

void BlueZSession::finish(const Completion& completion, error_code ec) {
    report({}, completion, ec);
}

void BlueZSession::report(std::vector<Device> found, const Completion& completion, error_code ec) {
    post([this, found = std::move(found), completion, ec] {
        for (const Device& device : found) {
            fireSafely(mSetting.owner.onPeerFound, device.address, device.shownName(),
                       static_cast<unsigned long>(device.deviceClass));
            if (!mOpen)
                return;
        }
        complete(completion, ec);
    });
}

template <class Task>
void BlueZSession::post(Task task) {
    mSetting.queue->post([weak = weak_from_this(), task = std::move(task)]() mutable {
        if (const auto self = weak.lock())
            self->run(std::move(task));
    });
}

} // namespace orbelantine::bluez
