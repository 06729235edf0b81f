#pragma once

#include "bluetooth/dbus/linux/Bus.h"
#include "bluetooth/radio/linux/DeviceTable.h"

#include <functional>
#include <string>
#include <vector>

namespace sdbus {
class Error;
class Message;
class MethodReply;
} // namespace sdbus

namespace orbelantine::dbus {
class Calls;
} // namespace orbelantine::dbus

namespace orbelantine::bluez {

/// Keeps a table as BlueZ tells it, over BlueZ's end and return. What anybody else sends is
/// ignored. It belongs to the thread of the bus, and goes before the calls.
class BlueZObjects {
  public:
    struct Events {
        /// All objects have been read: at first, and after each return of BlueZ.
        std::function<void()> onRead;
        /// They can't be; the table is empty.
        std::function<void(const sdbus::Error&)> onUnread;
        /// BlueZ has ended; the table is empty.
        std::function<void()> onGone;
        /// An adapter came, went or changed.
        std::function<void()> onAdapters;
        /// A device went.
        std::function<void(const CMacAddress&)> onDeviceRemoved;
    };

    /// Nothing happens before read(). Throws sdbus::Error.
    BlueZObjects(dbus::Bus& bus, dbus::Calls& calls, Events events);

    void read();

    [[nodiscard]] const DeviceTable& table() const { return mTable; }

    [[nodiscard]] DeviceTable& table() { return mTable; }

    /// BlueZ's own name on the bus, while the table is read.
    [[nodiscard]] const std::string& owner() const { return mOwner; }

  private:
    using Handler = void (BlueZObjects::*)(sdbus::Message&);

    void subscribe(const std::string& match, Handler handler);
    void take(sdbus::MethodReply& reply);
    void ownerChanged(const std::string& owner);
    void added(sdbus::Message& signal);
    void removed(sdbus::Message& signal);
    void changed(sdbus::Message& signal);
    void tell(DeviceTable::Part part);

    dbus::Bus& mBus;
    dbus::Calls& mCalls;
    const Events mEvents;
    DeviceTable mTable;
    std::string mOwner;
    // The reading in progress; an older one's answer counts for nothing.
    unsigned mReading = 0;
};

} // namespace orbelantine::bluez
