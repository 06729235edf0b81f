#pragma once

#include "bluetooth/DriverApi.h"

#include <string>

namespace orbelantine {

/// Whether a device path bears the mark of the private driver.
[[nodiscard]] bool isPrivateDriverPath(const std::wstring& path);

/// How reading a device path failed: the error of an allocation or of the detail request.
struct DevicePathError {
    DriverApi::Error allocation = 0;
    DriverApi::Error detail = 0;
};

/// Reads the path of one device interface of `list`.
[[nodiscard]] DevicePathError readDevicePath(DriverApi& api, DriverApi::Handle list,
                                             const DriverApi::InterfaceData& data,
                                             std::wstring& path);

} // namespace orbelantine
