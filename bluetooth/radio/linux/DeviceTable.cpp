#include "bluetooth/radio/linux/DeviceTable.h"

#include "bluetooth/dbus/linux/BlueZNames.h"

#include <algorithm>

namespace orbelantine::bluez {

namespace {

template <class Value>
void assign(Value& value, const std::optional<Value>& told) {
    if (told)
        value = *told;
}

void update(Adapter& adapter, const Properties& properties) {
    const AdapterProperties told = parseAdapter(properties);
    assign(adapter.address, told.address);
    assign(adapter.alias, told.alias);
    assign(adapter.powered, told.powered);
    assign(adapter.discoverable, told.discoverable);
}

void update(Device& device, const Properties& properties) {
    const DeviceProperties told = parseDevice(properties);
    assign(device.address, told.address);
    assign(device.name, told.name);
    assign(device.alias, told.alias);
    assign(device.deviceClass, told.deviceClass);
    assign(device.paired, told.paired);
    assign(device.trusted, told.trusted);
    assign(device.connected, told.connected);
    device.heard = device.heard || told.heard;
    device.seen = device.seen || told.heard;
}

bool holds(const std::vector<std::string>& names, const char* name) {
    return std::ranges::find(names, name) != names.end();
}

/// Calls for each device below an adapter's path.
template <class Devices, class Visit>
void visitDevices(Devices& devices, const std::string& adapter, Visit visit) {
    const std::string folder = adapter + "/";
    for (auto it = devices.lower_bound(folder); it != devices.end(); ++it) {
        if (!it->first.starts_with(folder))
            return;
        visit(*it);
    }
}

template <class Map>
auto* findIn(Map& map, const std::string& path) {
    const auto found = map.find(path);
    return found == map.end() ? nullptr : &found->second;
}

} // namespace

void DeviceTable::clear() {
    mAdapters.clear();
    mDevices.clear();
}

DeviceTable::Part DeviceTable::add(const std::string& path, const Interfaces& interfaces) {
    if (const auto* properties = findIn(interfaces, dbus::kAdapter)) {
        update(mAdapters[path], *properties);
        return Part::Adapters;
    }
    const auto* properties = findIn(interfaces, dbus::kDevice);
    if (properties == nullptr)
        return Part::None;
    Device& device = mDevices[path];
    update(device, *properties);
    device.seen = true;
    return Part::Devices;
}

DeviceTable::Part DeviceTable::remove(const std::string& path,
                                      const std::vector<std::string>& interfaces) {
    if (holds(interfaces, dbus::kAdapter) && mAdapters.erase(path) != 0)
        return Part::Adapters;
    if (holds(interfaces, dbus::kDevice) && mDevices.erase(path) != 0)
        return Part::Devices;
    return Part::None;
}

DeviceTable::Part DeviceTable::change(const std::string& path, const std::string& interface,
                                      const Properties& changed,
                                      const std::vector<std::string>& invalidated) {
    if (Adapter* adapter = interface == dbus::kAdapter ? findIn(mAdapters, path) : nullptr) {
        update(*adapter, changed);
        return Part::Adapters;
    }
    Device* const device = interface == dbus::kDevice ? findIn(mDevices, path) : nullptr;
    if (device == nullptr)
        return Part::None;
    update(*device, changed);
    if (holds(invalidated, "RSSI"))
        device->heard = false;
    return Part::Devices;
}

const Adapter* DeviceTable::findAdapter(const std::string& path) const {
    return findIn(mAdapters, path);
}

const Device* DeviceTable::findDevice(const std::string& path) const {
    return findIn(mDevices, path);
}

std::string DeviceTable::pathOf(const std::string& adapter, const CMacAddress& address) const {
    std::string path;
    visitDevices(mDevices, adapter, [&](const Devices::value_type& entry) {
        if (entry.second.address == address)
            path = entry.first;
    });
    return path;
}

std::vector<Device> DeviceTable::devices(const std::string& adapter,
                                         bool (*wanted)(const Device&)) const {
    std::vector<Device> found;
    visitDevices(mDevices, adapter, [&](const Devices::value_type& entry) {
        if (!entry.second.address.isEmpty() && wanted(entry.second))
            found.push_back(entry.second);
    });
    return found;
}

void DeviceTable::forgetSightings() {
    for (auto& [path, device] : mDevices)
        device.seen = device.heard;
}

} // namespace orbelantine::bluez
