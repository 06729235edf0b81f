#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <variant>

namespace orbelantine::phone {

struct MouseReport {
    std::uint8_t buttons = 0;
    std::int16_t dx = 0;
    std::int16_t dy = 0;
    std::int16_t wheel = 0;

    bool operator==(const MouseReport&) const = default;
};

struct KeyboardReport {
    /// Bit i is usage 224 + i.
    std::uint8_t modifiers = 0;
    /// Usages held, 0 in a free place.
    std::array<std::uint8_t, 6> keys{};

    bool operator==(const KeyboardReport&) const = default;
};

/// Positions are 0..65535 from edge to edge.
struct AbsoluteMouseReport {
    bool tip = false;
    std::uint16_t x = 0;
    std::uint16_t y = 0;

    bool operator==(const AbsoluteMouseReport&) const = default;
};

struct DigitizerReport {
    bool tip = false;
    std::uint16_t x = 0;
    std::uint16_t y = 0;
    std::uint16_t scanCounter = 0;

    bool operator==(const DigitizerReport&) const = default;
};

struct ConsumerReport {
    /// 4 or 5: the usages' high or low range.
    std::uint8_t reportId = 0;
    /// 0 when the key is up.
    std::uint16_t usage = 0;

    bool operator==(const ConsumerReport&) const = default;
};

struct SystemReport {
    /// 0 when the key is up.
    std::uint8_t code = 0;

    bool operator==(const SystemReport&) const = default;
};

/// Bytes that are no report.
struct Malformed {
    /// A clause for the log; static text.
    const char* reason = "";
};

using Report = std::variant<MouseReport, KeyboardReport, AbsoluteMouseReport, DigitizerReport,
                            ConsumerReport, SystemReport, Malformed>;

/// One name for each alternative of Report but the last, in its order.
inline constexpr std::array<const char*, std::variant_size_v<Report> - 1> kReportNames = {
    "mouse", "keyboard", "absolute_mouse", "digitizer", "consumer", "system"};

/// Reads one payload of the interrupt channel, transaction header first. The size must be exactly
/// the report's, and fixed fields must hold their value; any bytes at all may be given.
[[nodiscard]] Report decodeReport(std::span<const std::uint8_t> bytes);

} // namespace orbelantine::phone
