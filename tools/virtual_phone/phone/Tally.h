#pragma once

#include "tools/virtual_phone/phone/ReportDecoder.h"

#include <array>
#include <cstdint>
#include <map>

namespace orbelantine::phone {

/// Left, right, middle: the order of their bits in a report.
inline constexpr std::array<const char*, 3> kButtonNames = {"left", "right", "middle"};

/// What a phone received in its whole session, to compare with what a host sent.
struct Tally {
    std::uint64_t reports = 0;
    /// In the order of kReportNames.
    std::array<std::uint64_t, kReportNames.size()> reportsByKind{};
    /// Packets that made no sense, and reports on the wrong channel or on none.
    std::uint64_t errors = 0;

    /// Mouse reports that carried a delta, or another absolute position than the one before.
    std::uint64_t moves = 0;
    /// Sums of the relative reports' deltas, before the screen's edges.
    std::int64_t dx = 0;
    std::int64_t dy = 0;
    /// Presses by button, in the order of kButtonNames; a touch counts as left.
    std::array<std::uint64_t, kButtonNames.size()> clicks{};
    std::uint64_t scrolls = 0;
    std::int64_t scrollAmount = 0;

    /// Keys that came to be held, modifiers included.
    std::uint64_t keyPresses = 0;
    /// Presses by consumer usage and by system control code.
    std::map<std::uint16_t, std::uint64_t> consumerPresses;
    std::map<std::uint8_t, std::uint64_t> systemPresses;

    /// The three bytes with which a host opens its session; it sends them twice.
    std::uint64_t greetings = 0;
    std::uint64_t unplugs = 0;
    std::uint64_t controlConnects = 0;
    std::uint64_t interruptConnects = 0;
};

} // namespace orbelantine::phone
