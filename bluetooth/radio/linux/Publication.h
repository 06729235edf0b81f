#pragma once

#include "bluetooth/dbus/linux/Bus.h"
#include "bluetooth/dbus/linux/BusLoop.h"
#include "bluetooth/dbus/linux/Profile.h"
#include "bluetooth/radio/linux/SdpRecord.h"

#include <boost/asio/io_context.hpp>

#include <memory>
#include <string>

namespace orbelantine::bluez {

/// A service record in BlueZ, for as long as this lives, over a connection of its own. BlueZ may
/// come and go meanwhile; D-Bus may not. It belongs to the thread that runs the io_service, and
/// doesn't go in a handler.
class Publication {
  public:
    /// To the system bus if `bus` is empty. Throws sdbus::Error, and std::system_error where there
    /// are no descriptors left.
    Publication(const std::string& bus, boost::asio::io_context& ioService, SdpRecord record);

    /// Once; waits for BlueZ's answer. Throws sdbus::Error.
    void publish();

  private:
    void publishAgain();

    dbus::Bus mBus;
    dbus::Profile mProfile;
    std::shared_ptr<dbus::BusLoop> mLoop;
};

} // namespace orbelantine::bluez
