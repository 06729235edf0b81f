#pragma once

#include "bluetooth/radio/linux/BlueZProperties.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace orbelantine::bluez {

struct Device {
    [[nodiscard]] const std::wstring& shownName() const { return alias.empty() ? name : alias; }

    /// Whether the stack remembers it.
    [[nodiscard]] bool known() const { return paired || trusted || connected; }

    CMacAddress address;
    std::wstring name;
    std::wstring alias;
    std::uint32_t deviceClass = 0;
    bool paired = false;
    bool trusted = false;
    bool connected = false;
    /// It is being heard.
    bool heard = false;
    /// Some time since forgetSightings.
    bool seen = false;
};

struct Adapter {
    CMacAddress address;
    std::wstring alias;
    bool powered = false;
    bool discoverable = false;
};

/// BlueZ's adapters and devices by their paths, as its signals tell of them.
class DeviceTable {
  public:
    using Adapters = std::map<std::string, Adapter>;
    using Devices = std::map<std::string, Device>;

    /// Which part a change was in.
    enum class Part { None, Adapters, Devices };

    void clear();
    /// An object's interfaces that it has now, others staying as they are.
    Part add(const std::string& path, const Interfaces& interfaces);
    Part remove(const std::string& path, const std::vector<std::string>& interfaces);
    /// Only for an object that is here.
    Part change(const std::string& path, const std::string& interface, const Properties& changed,
                const std::vector<std::string>& invalidated);

    /// The first adapter by its path; null if there is none.
    [[nodiscard]] const Adapters::value_type* adapter() const {
        return mAdapters.empty() ? nullptr : &*mAdapters.begin();
    }

    [[nodiscard]] const Adapter* findAdapter(const std::string& path) const;
    [[nodiscard]] const Device* findDevice(const std::string& path) const;
    /// The path of an adapter's device; empty if there is none.
    [[nodiscard]] std::string pathOf(const std::string& adapter, const CMacAddress& address) const;
    /// An adapter's devices of which `wanted` is true.
    [[nodiscard]] std::vector<Device> devices(const std::string& adapter,
                                              bool (*wanted)(const Device&)) const;

    /// From here on `seen` tells of new sightings, of devices that are being heard too.
    void forgetSightings();

  private:
    Adapters mAdapters;
    Devices mDevices;
};

} // namespace orbelantine::bluez
