#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace orbelantine::bluez {

/// A service record as BlueZ takes it.
struct SdpRecord {
    std::string xml;
    /// Of its first service class, in full.
    std::string uuid;
};

/// Sequences within each other, the record's own among them.
inline constexpr int kDeepestSdpElement = 32;

/// Reads a record of data elements, as devices send them: one sequence of attribute ids and values.
/// Empty for one that isn't whole, has something behind it, a type or size that there isn't, no
/// service class, or a URL beyond printable ASCII.
[[nodiscard]] std::optional<SdpRecord> parseSdpRecord(std::span<const std::uint8_t> bytes);

} // namespace orbelantine::bluez
