#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orbelantine::phone {

/// A Bluetooth device address, its bytes in the order of the text.
struct Address {
    std::array<std::uint8_t, 6> bytes{};

    bool operator==(const Address&) const = default;
};

/// Reads "00:11:22:aa:BB:cc"; anything else gives nothing.
[[nodiscard]] std::optional<Address> parseAddress(std::string_view text);

/// "00:11:22:AA:BB:CC"
[[nodiscard]] std::string toText(const Address& address);

/// "001122aabbcc"
[[nodiscard]] std::string toDigits(const Address& address);

} // namespace orbelantine::phone
