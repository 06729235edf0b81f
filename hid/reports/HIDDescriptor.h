#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace orbelantine {

/// What the computer publishes of itself as a HID device: the names and subclass of the service
/// record, and its report descriptor.
inline constexpr const char* kHidServiceName = "OrbelantineHIDDevice";
inline constexpr const char* kHidServiceDescription = "Provides HID, Keyboard and mouse";
inline constexpr const char* kHidProviderName = "Orbelantine";
inline constexpr std::uint16_t kHidSubclass = 64;
inline constexpr std::size_t kHidReportDescriptorSize = 98;
extern const std::array<std::uint8_t, kHidReportDescriptorSize> kHidReportDescriptor;

} // namespace orbelantine
