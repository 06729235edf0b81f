#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// Data elements of a service record, as the XML that BlueZ takes.
namespace orbelantine::dbus::xml {

/// So many digits, without a prefix.
[[nodiscard]] std::string hex(std::uint64_t value, int digits);
[[nodiscard]] std::string hex(std::span<const std::uint8_t> bytes);

/// An element whose value needs no escapes.
[[nodiscard]] std::string element(std::string_view type, std::string_view value);
[[nodiscard]] std::string boolean(bool value);
/// In letters if it is printable ASCII, else in hex digits.
[[nodiscard]] std::string text(std::string_view value);
[[nodiscard]] std::string url(std::string_view value);
/// A text of any bytes.
[[nodiscard]] std::string bytes(std::span<const std::uint8_t> value);
/// A sequence or alternate of elements, one behind the other.
[[nodiscard]] std::string list(std::string_view type, std::string_view items);

[[nodiscard]] std::string attribute(std::uint16_t id, std::string_view value);
/// The whole of its attributes, one behind the other.
[[nodiscard]] std::string record(std::string_view attributes);

/// What an element has in letters, apart from escapes.
[[nodiscard]] bool isPrintable(std::string_view text);

} // namespace orbelantine::dbus::xml
