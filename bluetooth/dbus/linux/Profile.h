#pragma once

#include <functional>
#include <memory>
#include <string>

namespace sdbus {
class IObject;
class IProxy;
} // namespace sdbus

namespace orbelantine::dbus {

class Bus;

/// A profile of this program's at BlueZ, which publishes its service record. It belongs to the
/// thread that serves the bus, and goes before that, not in a handler.
class Profile {
  public:
    struct Setting {
        /// Of the object that BlueZ calls.
        std::string path;
        std::string name;
        std::string uuid;
        std::string recordXml;
    };

    /// From handlers of the bus; either may be null.
    struct Events {
        /// BlueZ has withdrawn the record by itself, as it does at its end.
        std::function<void()> onWithdrawn;
        /// BlueZ has come, without the record.
        std::function<void()> onBlueZ;
    };

    /// Takes the bus's watchOwner. Throws sdbus::Error.
    Profile(Bus& bus, Setting setting, Events events);
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;
    /// Withdraws the record.
    ~Profile();

    /// Waits for BlueZ's answer. Throws sdbus::Error.
    void publish();

  private:
    void implement();
    void ownerChanged(const std::string& owner);
    void withdrawn();

    Bus& mBus;
    const Setting mSetting;
    const Events mEvents;
    std::unique_ptr<sdbus::IObject> mObject;
    std::unique_ptr<sdbus::IProxy> mManager;
    bool mPublished = false;
};

} // namespace orbelantine::dbus
