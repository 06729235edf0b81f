#pragma once

#include "core/common/errors/ErrorCode.h"

#include <boost/signals2/signal.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

namespace orbelantine {

/// One HID connection to one peer. Any thread may call.
class IHIDDeviceClient {
  public:
    class Dummy;

    /// The link is lost or was given up; fires on the thread that noticed.
    boost::signals2::signal<void(boost::system::error_code)> onDisconnected;

    virtual ~IHIDDeviceClient() = default;
    /// Blocks until both channels stand. `address` as in "00:11:22:33:44:55".
    [[nodiscard]] virtual error_code connect(const std::string& address) = 0;
    virtual void disconnect() = 0;
    /// Closes the channels under a connection that stays formally connected, and breaks a call
    /// of another thread that waits for the driver.
    virtual void forceDisconnect() = 0;
    [[nodiscard]] virtual bool isConnected() = 0;
    /// Sends one report, transaction header first, on the interrupt channel; the bytes lie at a
    /// multiple of driver::kBufferAlignment and are not kept.
    virtual void sendReport(const std::uint8_t* data, std::size_t size) = 0;
    /// Asks the peer to forget this device; blocks up to 5 seconds.
    [[nodiscard]] virtual error_code virtualCableUnplug() = 0;
};

} // namespace orbelantine
