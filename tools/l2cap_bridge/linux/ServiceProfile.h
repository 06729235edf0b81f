#pragma once

#include "bluetooth/dbus/linux/Bus.h"
#include "bluetooth/dbus/linux/Profile.h"
#include "tools/l2cap_bridge/linux/PollSource.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

namespace orbelantine::bridge {

/// The record isn't published; one line says why and what to do next.
class RecordError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The service record in BlueZ, for as long as this lives. No thread of its own: BlueZ's calls are
/// answered in process().
class ServiceProfile final : public PollSource {
  public:
    /// Gets a line for the user when the record is withdrawn before the end.
    using Say = std::function<void(const std::string&)>;

    /// Publishes the record, over the system bus if `bus` is empty. Throws RecordError.
    ServiceProfile(const std::string& bus, const std::string& recordXml, Say say);

    [[nodiscard]] pollfd wanted() override;
    [[nodiscard]] int timeout() override;
    void process() override;

  private:
    Say mSay;
    std::unique_ptr<dbus::Bus> mBus;
    std::unique_ptr<dbus::Profile> mProfile;
};

} // namespace orbelantine::bridge
