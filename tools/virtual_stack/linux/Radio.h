#pragma once

#include "tools/virtual_stack/linux/BusObject.h"
#include "tools/virtual_stack/linux/RemoteDevice.h"
#include "tools/virtual_stack/linux/Settings.h"
#include "tools/virtual_stack/linux/Surroundings.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace orbelantine::stack {

/// An adapter with the devices around it.
class Radio {
  public:
    Radio(Surroundings& surroundings, AdapterSettings settings);
    Radio(const Radio&) = delete;
    Radio& operator=(const Radio&) = delete;
    ~Radio();

    /// It and what it knows become objects on the bus that is there now.
    void publish();
    /// The bus is going, or gone.
    void withdraw();

    void power(bool on);
    void addDevice(const DeviceSettings& settings);
    void removeDevice(const std::string& address);
    /// Null for none.
    [[nodiscard]] RemoteDevice* device(const std::string& address) const;
    void signal(unsigned times) const;
    /// Devices that were only found are no longer objects, as BlueZ has it after a while.
    void dropFound();

    void forgetClient(const std::string& client);

  private:
    void addMethods();
    void write(const std::string& name, const Value& value);
    void update();
    void checkPower() const;
    void startDiscovery(const std::string& client);
    void stopDiscovery(const std::string& client);
    void forgetDiscoverer(const std::string& client);
    void discoverersChanged();
    void forgetDevice(const std::string& path);

    Surroundings& mSurroundings;
    AdapterSettings mSettings;
    bool mDiscoverable = false;
    std::uint32_t mDiscoverableTimeout = 180;
    bool mPairable = true;
    std::vector<std::string> mDiscoverers;
    std::unique_ptr<BusObject> mObject;
    /// By address.
    std::map<std::string, std::unique_ptr<RemoteDevice>> mDevices;
};

} // namespace orbelantine::stack
