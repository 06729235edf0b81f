#include "tools/virtual_stack/linux/Radio.h"

#include <algorithm>
#include <utility>

namespace orbelantine::stack {

namespace {

constexpr const char* kAdapterInterface = "org.bluez.Adapter1";

} // namespace

Radio::Radio(Surroundings& surroundings, AdapterSettings settings)
    : mSurroundings(surroundings)
    , mSettings(std::move(settings)) {
    publish();
}

Radio::~Radio() {
    mDiscoverers.clear();
    discoverersChanged();
    mDevices.clear();
}

void Radio::publish() {
    if (mSurroundings.bus == nullptr)
        return;
    mObject = std::make_unique<BusObject>(
        mSurroundings.bus->connection, "/org/bluez/" + mSettings.name, kAdapterInterface,
        [this](const std::string& name, const Value& value) { write(name, value); });
    for (const char* name : {"Alias", "Powered", "Discoverable", "DiscoverableTimeout", "Pairable"})
        mObject->writable(name);
    addMethods();
    update();
    mObject->publish();
    for (const auto& [address, device] : mDevices)
        if (device->isKnown())
            device->appear();
}

void Radio::withdraw() {
    mDiscoverers.clear();
    discoverersChanged();
    for (const auto& [address, device] : mDevices)
        device->disappear();
    mObject.reset();
}

void Radio::power(bool on) {
    mSettings.powered = on;
    mSurroundings.recorder.add({"power", mSettings.name, on ? "on" : "off", ""});
    if (!on) {
        mDiscoverable = false;
        mDiscoverers.clear();
        for (const auto& [address, device] : mDevices)
            device->disconnect();
    }
    discoverersChanged();
}

void Radio::addDevice(const DeviceSettings& settings) {
    std::unique_ptr<RemoteDevice>& device = mDevices[settings.address];
    if (device)
        device->change(settings);
    else
        device = std::make_unique<RemoteDevice>(
            mSurroundings, "/org/bluez/" + mSettings.name, [this] { return mSettings.powered; },
            settings);
    if (!mDiscoverers.empty())
        device->sight();
}

void Radio::removeDevice(const std::string& address) {
    mDevices.erase(address);
}

RemoteDevice* Radio::device(const std::string& address) const {
    const auto place = mDevices.find(address);
    return place == mDevices.end() ? nullptr : place->second.get();
}

void Radio::signal(unsigned times) const {
    for (const auto& [address, device] : mDevices)
        device->signal(times);
}

void Radio::dropFound() {
    for (const auto& [address, device] : mDevices)
        if (!device->isKnown())
            device->disappear();
}

void Radio::forgetClient(const std::string& client) {
    if (std::ranges::find(mDiscoverers, client) != mDiscoverers.end())
        forgetDiscoverer(client);
    for (const auto& [address, device] : mDevices)
        device->forgetClient(client);
}

void Radio::addMethods() {
    mObject->method("SetDiscoveryFilter", [this](const Variants& filter) {
        mSurroundings.recorder.add({"SetDiscoveryFilter", mSettings.name, "", mObject->sender()});
        mSurroundings.recorder.change([&](Seen& seen) { seen.filters.push_back(filter); });
        checkPower();
    });
    mObject->method("StartDiscovery", [this] { startDiscovery(mObject->sender()); });
    mObject->method("StopDiscovery", [this] { stopDiscovery(mObject->sender()); });
    mObject->method("RemoveDevice", [this](const sdbus::ObjectPath& path) { forgetDevice(path); });
}

void Radio::write(const std::string& name, const Value& value) {
    if (name == "Powered")
        return power(std::get<bool>(value));
    if (name == "Alias")
        mSettings.alias = std::get<std::string>(value);
    if (name == "Discoverable") {
        checkPower();
        mDiscoverable = std::get<bool>(value);
        mSurroundings.recorder.add(
            {"Discoverable", mSettings.name, mDiscoverable ? "on" : "off", mObject->sender()});
    }
    if (name == "DiscoverableTimeout")
        mDiscoverableTimeout = std::get<std::uint32_t>(value);
    if (name == "Pairable")
        mPairable = std::get<bool>(value);
    update();
}

void Radio::update() {
    if (!mObject)
        return;
    mObject->set("Address", mSettings.address);
    mObject->set("Name", mSettings.alias);
    mObject->set("Alias", mSettings.alias);
    mObject->set("Class", mSettings.deviceClass);
    mObject->set("Powered", mSettings.powered);
    mObject->set("Discoverable", mDiscoverable);
    mObject->set("DiscoverableTimeout", mDiscoverableTimeout);
    mObject->set("Pairable", mPairable);
    mObject->set("Discovering", !mDiscoverers.empty());
}

void Radio::checkPower() const {
    if (!mSettings.powered)
        throw bluezError("NotReady", "Resource Not Ready");
}

void Radio::startDiscovery(const std::string& client) {
    mSurroundings.recorder.add({"StartDiscovery", mSettings.name, "", client});
    checkPower();
    if (std::ranges::find(mDiscoverers, client) != mDiscoverers.end())
        throw bluezError("InProgress", "Operation already in progress");
    mDiscoverers.push_back(client);
    discoverersChanged();
    for (const auto& [address, device] : mDevices)
        device->sight();
}

void Radio::stopDiscovery(const std::string& client) {
    mSurroundings.recorder.add({"StopDiscovery", mSettings.name, "", client});
    checkPower();
    if (mDiscoverers.empty())
        throw bluezError("Failed", "No discovery started");
    if (std::ranges::find(mDiscoverers, client) == mDiscoverers.end())
        throw bluezError("NotAuthorized", "Operation Not Authorized");
    forgetDiscoverer(client);
}

void Radio::forgetDiscoverer(const std::string& client) {
    std::erase(mDiscoverers, client);
    discoverersChanged();
}

void Radio::discoverersChanged() {
    mSurroundings.recorder.change([this](Seen& seen) { seen.discoverers = mDiscoverers; });
    update();
    if (mDiscoverers.empty())
        for (const auto& [address, device] : mDevices)
            device->loseSight();
}

void Radio::forgetDevice(const std::string& path) {
    const auto place = std::ranges::find_if(mDevices, [&path](const auto& entry) {
        return entry.second->isObject() && entry.second->path() == path;
    });
    const std::string address = place == mDevices.end() ? "" : place->first;
    mSurroundings.recorder.add({"RemoveDevice", address, "", mObject->sender()});
    if (place == mDevices.end())
        throw bluezError("DoesNotExist", "Does Not Exist");
    checkPower();
    place->second->unpair();
}

} // namespace orbelantine::stack
