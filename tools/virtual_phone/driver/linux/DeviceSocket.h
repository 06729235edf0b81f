#pragma once

#include "core/common/types/linux/FileDescriptor.h"
#include "tools/virtual_phone/driver/Address.h"

#include <string>

namespace orbelantine::phone {

/// $ORBELANTINE_DEVICE_DIR, else $XDG_RUNTIME_DIR/orbelantine/devices, else
/// /tmp/orbelantine-<uid>/devices.
[[nodiscard]] std::string defaultDeviceFolder();

/// The device's listening socket, for as long as the device is there: the destructor removes it.
class DeviceSocket {
  public:
    /// `devices` is an absolute path. Makes the folders that are missing, for their owner alone,
    /// and replaces a socket that no one listens on. Throws std::runtime_error with a line for the
    /// user.
    DeviceSocket(const std::string& devices, const Address& address);
    DeviceSocket(const DeviceSocket&) = delete;
    DeviceSocket& operator=(const DeviceSocket&) = delete;
    ~DeviceSocket();

    [[nodiscard]] int descriptor() const { return mListener.get(); }

    [[nodiscard]] const std::string& path() const { return mPath; }

  private:
    void removeStale() const;
    void listen();

    std::string mName;
    std::string mPath;
    FileDescriptor mFolder;
    FileDescriptor mListener;
};

} // namespace orbelantine::phone
