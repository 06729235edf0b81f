#pragma once

#include "hid/reports/HIDReport.h"

#include <array>
#include <cstdint>

namespace orbelantine {

/// The first byte of every report: HID transaction DATA, input report.
inline constexpr std::uint8_t kInputTransaction = 0xA1;

enum HIDReportId : std::uint8_t {
    kReportRelativeMouse = 1,
    kReportKeyboard = 2,
    kReportPointer = 3,
    kReportConsumerHigh = 4,
    kReportConsumerLow = 5,
    kReportSystemControl = 6,
};

/// Each writes one report into a cleared record; of coordinates the low 16 bits go out.
/// @{
void writeRelativeMouse(HIDReport& report, std::uint8_t buttons, std::int32_t x, std::int32_t y,
                        std::int32_t wheel);
void writeAbsoluteMouse(HIDReport& report, bool tip, std::int32_t x, std::int32_t y);
void writeDigitizer(HIDReport& report, bool tip, std::int32_t x, std::int32_t y,
                    std::uint16_t scanCounter);
void writeKeyboard(HIDReport& report, std::uint8_t modifiers,
                   const std::array<std::uint8_t, 6>& keys);
void writeConsumerControl(HIDReport& report, HIDReportId id, std::uint16_t usage);
void writeSystemControl(HIDReport& report, std::uint8_t code);
/// @}

} // namespace orbelantine
