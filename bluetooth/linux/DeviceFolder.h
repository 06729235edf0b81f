#pragma once

#include "bluetooth/DriverApi.h"

#include <filesystem>
#include <string>
#include <vector>

namespace orbelantine {

/// $ORBELANTINE_DEVICE_DIR, else $XDG_RUNTIME_DIR/orbelantine/devices, else
/// /tmp/orbelantine-<uid>/devices.
[[nodiscard]] std::filesystem::path deviceFolder();

/// The folder's name for a device interface class: the GUID in lower case without braces.
[[nodiscard]] std::string classFolderName(const Guid& guid);

/// Paths of the devices of a class, sorted: sockets, and with `presentOnly` off plain files too.
/// A folder that doesn't exist holds no device; a name that is no UTF-8 is logged and left out.
/// kErrorAccessDenied for a folder in /tmp that others may write.
[[nodiscard]] DriverApi::Error listDevices(const Guid& interfaceClass, bool presentOnly,
                                           std::vector<std::wstring>& paths);

/// The file behind a path of listDevices, whatever the locale.
[[nodiscard]] std::filesystem::path deviceFile(const std::wstring& path);

} // namespace orbelantine
