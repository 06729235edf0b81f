#pragma once

#include "avstack/IMediaElement.h"

#include <boost/signals2/signal.hpp>

#include <string>

namespace orbelantine {

/// The end of an input chain: sends what each buffer means to a phone over one HID connection. One
/// thread at a time, but for forceDisconnect.
class IBluetoothHIDClient : public IMediaElement {
  public:
    class Dummy;

    /// The link is lost; fires on the thread that noticed.
    boost::signals2::signal<void(boost::system::error_code)> onDisconnected;

    virtual void disconnect() = 0;
    /// Blocks until the link stands. `address` as in "00:11:22:33:44:55".
    [[nodiscard]] virtual error_code connect(const std::string& address) = 0;
    /// Closes the channels under a connection that stays formally connected. From any thread.
    virtual void forceDisconnect() = 0;
    [[nodiscard]] virtual bool isConnected() = 0;
    /// Asks the peer to forget this device; blocks up to 5 seconds.
    [[nodiscard]] virtual error_code virtualCableUnplug() = 0;
};

} // namespace orbelantine
