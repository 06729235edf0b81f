#pragma once

#include "tools/program/CommandLine.h"
#include "tools/virtual_stack/linux/Settings.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orbelantine::stack {

struct Options {
    /// Bus address; empty for a bus of its own.
    std::string bus = {};
    std::vector<DeviceSettings> devices = {};
    /// Files; empty for none.
    std::string log = {};
    std::string readyFile = {};
    std::string control = {};
};

/// Reads "00:11:22:33:44:55=NAME" or "00:11:22:33:44:55=NAME=CLASS"; anything else gives nothing.
[[nodiscard]] std::optional<DeviceSettings> parseDevice(std::string_view text);

/// Ends a sentence "... wants ".
inline constexpr const char* kWantedDevice =
    "ADDRESS=NAME or ADDRESS=NAME=CLASS, such as 00:11:22:33:44:55=Phone=phone, with a class of "
    "phone, tablet, computer, headset, keyboard or a number such as 0x5A020C";

/// Reads the arguments behind the program's name.
[[nodiscard]] phone::Parsed<Options> parseOptions(std::span<const char* const> arguments);

[[nodiscard]] std::string helpText();

} // namespace orbelantine::stack
