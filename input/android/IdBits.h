#pragma once

#include <bit>
#include <cstdint>

namespace android {

/// A set of pointer ids from 0 to 31; id n is the bit 0x80000000 >> n.
struct IdBits {
    std::uint32_t value = 0;

    [[nodiscard]] static constexpr IdBits of(std::uint32_t id) {
        return {id < 32 ? 0x80000000U >> id : 0};
    }

    [[nodiscard]] constexpr bool isEmpty() const { return value == 0; }

    [[nodiscard]] constexpr bool has(std::uint32_t id) const { return overlaps(of(id)); }

    [[nodiscard]] constexpr bool overlaps(IdBits other) const { return (value & other.value) != 0; }

    [[nodiscard]] constexpr std::uint32_t count() const {
        return static_cast<std::uint32_t>(std::popcount(value));
    }

    /// The lowest id; the set is not empty.
    [[nodiscard]] constexpr std::uint32_t first() const {
        return static_cast<std::uint32_t>(std::countl_zero(value));
    }

    /// How many lower ids the set has.
    [[nodiscard]] constexpr std::uint32_t rank(std::uint32_t id) const {
        return IdBits{value & ~(of(id).value | (of(id).value - 1))}.count();
    }

    constexpr void remove(IdBits other) { value &= ~other.value; }

    /// Drops the highest id.
    constexpr void removeLast() { value &= value - 1; }

    constexpr bool operator==(const IdBits&) const = default;
};

} // namespace android
