#pragma once

#include "bluetooth/DriverApi.h"

namespace orbelantine {

/// Windows numbers of what goes wrong with a device socket.
namespace win32 {
inline constexpr DriverApi::Error kErrorTooManyOpenFiles = 4;
inline constexpr DriverApi::Error kErrorAccessDenied = 5;
inline constexpr DriverApi::Error kErrorNotEnoughMemory = 8;
inline constexpr DriverApi::Error kErrorInvalidData = 13;
inline constexpr DriverApi::Error kErrorBadLength = 24;
inline constexpr DriverApi::Error kErrorGenFailure = 31;
inline constexpr DriverApi::Error kErrorFilenameTooLong = 206;
inline constexpr DriverApi::Error kErrorMoreData = 234;
inline constexpr DriverApi::Error kErrorDeviceNotConnected = 1167;
inline constexpr DriverApi::Error kErrorInvalidUserBuffer = 1784;

inline constexpr DriverApi::Error kCrOutOfMemory = 2;
inline constexpr DriverApi::Error kCrInvalidData = 31;
} // namespace win32

/// The Windows number nearest to an errno; kErrorGenFailure for one without a counterpart.
[[nodiscard]] DriverApi::Error windowsError(int errnoValue);

} // namespace orbelantine
