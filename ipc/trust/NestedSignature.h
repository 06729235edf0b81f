#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace orbelantine {

/// The attribute of a signer that holds signatures nested in its own.
inline constexpr std::string_view kNestedSignature = "1.3.6.1.4.1.311.2.4.1";

/// What tells where a nested signature lies: an attribute's identifier and how many values it has.
struct SignerAttribute {
    std::string_view identifier;
    std::size_t valueCount;
};

struct NestedSignature {
    std::size_t attribute;
    std::size_t value;
};

/// The place of nested signature `index`, counted from 1. One number counts both: it is value
/// number `index` of the attribute of nested signatures number `index`, so the second signature
/// takes a second such attribute that has two values.
[[nodiscard]] std::optional<NestedSignature>
findNestedSignature(std::span<const SignerAttribute> attributes, std::uint32_t index);

} // namespace orbelantine
