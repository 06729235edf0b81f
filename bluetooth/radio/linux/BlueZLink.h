#pragma once

#include "bluetooth/dbus/linux/Bus.h"
#include "bluetooth/dbus/linux/BusLoop.h"
#include "bluetooth/dbus/linux/Calls.h"
#include "bluetooth/radio/linux/BlueZAgent.h"
#include "bluetooth/radio/linux/BlueZObjects.h"
#include "bluetooth/radio/linux/Inquiry.h"

#include <functional>
#include <memory>
#include <string>

namespace orbelantine::bluez {

/// All that one connection to D-Bus carries, in the order in which it is built. It belongs to the
/// thread that runs the io_service, and doesn't go in a handler of the bus.
struct BlueZLink {
    /// Throws sdbus::Error, and std::system_error where there are no descriptors left.
    BlueZLink(const std::string& address, IClock& clock, boost::asio::io_context& ioService,
              BlueZObjects::Events events, std::function<void()> onLost)
        : bus(address)
        , calls(bus, ioService)
        , objects(bus, calls, std::move(events))
        , inquiry(calls, objects.table(), clock, ioService)
        , loop(std::make_shared<dbus::BusLoop>(bus, ioService, std::move(onLost))) {}

    dbus::Bus bus;
    dbus::Calls calls;
    BlueZObjects objects;
    Inquiry inquiry;
    /// Null while nobody wants to be asked.
    std::unique_ptr<BlueZAgent> agent;
    std::shared_ptr<dbus::BusLoop> loop;
};

} // namespace orbelantine::bluez
