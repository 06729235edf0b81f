#pragma once

#include <cstdint>

namespace orbelantine {

/// Of a WLAN_INTERFACE_STATE; null for one that isn't known.
[[nodiscard]] const char* wlanStateName(std::int32_t state);

/// Of a notification of the auto-configuration module (source 8); "'Unknown'" of any other.
[[nodiscard]] const char* wlanNotificationName(std::uint32_t source, std::uint32_t code);

} // namespace orbelantine
