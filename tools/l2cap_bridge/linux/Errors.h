#pragma once

#include <cstdint>
#include <string>

namespace orbelantine::bridge {

/// The Windows number for an errno of the radio, as a device request would give it.
[[nodiscard]] std::uint32_t windowsError(int error);

/// Why there is no Bluetooth, and what to do next: one line for an errno of L2capApi::radio().
[[nodiscard]] std::string radioAdvice(int error);

/// Why the record isn't published, and what to do next: one line for an error that D-Bus names.
[[nodiscard]] std::string recordAdvice(const std::string& name, const std::string& message);

} // namespace orbelantine::bridge
