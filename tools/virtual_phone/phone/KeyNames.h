#pragma once

#include <cstdint>

namespace orbelantine::phone {

/// What a phone does at a consumer usage; "" for 0 and for usages without a name here.
[[nodiscard]] const char* consumerKeyName(std::uint16_t usage);

/// The same for a code of the system control report.
[[nodiscard]] const char* systemKeyName(std::uint8_t code);

} // namespace orbelantine::phone
