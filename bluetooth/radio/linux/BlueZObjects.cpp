#include "bluetooth/radio/linux/BlueZObjects.h"

#include "bluetooth/dbus/linux/BlueZNames.h"
#include "bluetooth/dbus/linux/Calls.h"
#include "core/common/log/Log.h"

#include <sdbus-c++/sdbus-c++.h>

#include <exception>
#include <utility>

namespace orbelantine::bluez {

BlueZObjects::BlueZObjects(dbus::Bus& bus, dbus::Calls& calls, Events events)
    : mBus(bus)
    , mCalls(calls)
    , mEvents(std::move(events)) {
    const std::string fromBlueZ = std::string("type='signal',sender='") + dbus::kBlueZ + "',";
    const std::string manager = fromBlueZ + "interface='" + dbus::kObjectManager + "',member=";
    // A rule for all of the devices: there may be hundreds.
    subscribe(manager + "'InterfacesAdded'", &BlueZObjects::added);
    subscribe(manager + "'InterfacesRemoved'", &BlueZObjects::removed);
    subscribe(fromBlueZ + "interface='" + dbus::kProperties +
                  "',member='PropertiesChanged',path_namespace='" + dbus::kBlueZPath + "'",
              &BlueZObjects::changed);
    mBus.watchOwner(dbus::kBlueZ, [this](const std::string& owner) { ownerChanged(owner); });
}

void BlueZObjects::read() {
    const unsigned reading = ++mReading;
    mCalls.call({dbus::kBlueZRoot, dbus::kObjectManager, "GetManagedObjects"},
                [this, reading](const sdbus::Error* error, sdbus::MethodReply& reply) {
                    if (reading != mReading)
                        return;
                    if (error == nullptr)
                        return take(reply);
                    mEvents.onUnread(*error);
                    // It may be busy with its own start; the next answer may take as long.
                    if (error->getName() == "org.freedesktop.DBus.Error.NoReply")
                        read();
                });
}

// What was told before is in the answer, what is told later changes it.
void BlueZObjects::take(sdbus::MethodReply& reply) {
    std::map<sdbus::ObjectPath, Interfaces> objects;
    reply >> objects;
    mTable.clear();
    for (const auto& [path, interfaces] : objects)
        mTable.add(path, interfaces);
    mOwner = reply.getSender();
    mEvents.onRead();
}

void BlueZObjects::ownerChanged(const std::string& owner) {
    ++mReading;
    mOwner.clear();
    mTable.clear();
    mEvents.onGone();
    if (!owner.empty())
        read();
}

void BlueZObjects::subscribe(const std::string& match, Handler handler) {
    mBus.connection().addMatch(
        match,
        [this, handler](sdbus::Message& signal) {
            try {
                // Anybody may send a signal to one client alone.
                if (!mOwner.empty() && signal.getSender() == mOwner)
                    (this->*handler)(signal);
            } catch (const std::exception& e) {
                ORB_LOG(kLogDebug, "%s() a signal of BlueZ can't be read: %s", e.what());
            }
        },
        sdbus::floating_slot);
}

void BlueZObjects::added(sdbus::Message& signal) {
    sdbus::ObjectPath path;
    Interfaces interfaces;
    signal >> path >> interfaces;
    tell(mTable.add(path, interfaces));
}

void BlueZObjects::removed(sdbus::Message& signal) {
    sdbus::ObjectPath path;
    std::vector<std::string> interfaces;
    signal >> path >> interfaces;
    const Device* const device = mTable.findDevice(path);
    const CMacAddress address = device == nullptr ? CMacAddress() : device->address;
    const auto part = mTable.remove(path, interfaces);
    if (part == DeviceTable::Part::Devices)
        mEvents.onDeviceRemoved(address);
    tell(part);
}

void BlueZObjects::changed(sdbus::Message& signal) {
    std::string interface;
    signal >> interface;
    // Other interfaces' values are many, and none of ours.
    if (interface != dbus::kDevice && interface != dbus::kAdapter)
        return;
    Properties properties;
    std::vector<std::string> invalidated;
    signal >> properties >> invalidated;
    tell(mTable.change(signal.getPath(), interface, properties, invalidated));
}

void BlueZObjects::tell(DeviceTable::Part part) {
    if (part == DeviceTable::Part::Adapters)
        mEvents.onAdapters();
}

} // namespace orbelantine::bluez
