#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace orbelantine::stack {

using Variants = std::map<std::string, sdbus::Variant>;

/// What a property may hold.
using Value = std::variant<bool, std::int16_t, std::uint32_t, std::string, sdbus::ObjectPath,
                           std::vector<std::string>>;

[[nodiscard]] inline sdbus::Variant toVariant(const Value& value) {
    return std::visit([](const auto& plain) { return sdbus::Variant(plain); }, value);
}

[[nodiscard]] inline std::string signatureOf(const Value& value) {
    return std::visit(
        [](const auto& plain) { return sdbus::signature_of<std::decay_t<decltype(plain)>>::str(); },
        value);
}

[[nodiscard]] inline sdbus::Error bluezError(const std::string& name, const std::string& message) {
    return {"org.bluez.Error." + name, message};
}

} // namespace orbelantine::stack
