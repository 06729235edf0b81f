#pragma once

#include "tools/program/CommandLine.h"
#include "tools/virtual_phone/driver/Address.h"
#include "tools/virtual_phone/phone/Acceleration.h"
#include "tools/virtual_phone/phone/Screen.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace orbelantine::phone {

/// How the phone and the driver before it misbehave.
struct Faults {
    bool refuseControl = false;
    bool refuseInterrupt = false;
    /// Reply to each request this much later.
    std::chrono::milliseconds late{0};
    std::int16_t driverVersion = 4;
    /// Vanish, once, after this many reports; come back after returnAfter, or end.
    std::optional<std::uint64_t> vanishAfter;
    std::optional<std::chrono::milliseconds> returnAfter;
    bool keepAfterUnplug = false;
    bool garbage = false;
};

struct Options {
    /// Empty for the default folder.
    std::string devices;
    Address address{{0x00, 0x11, 0x22, 0x33, 0x44, 0x55}};
    Screen screen;
    Acceleration acceleration = Acceleration::None;
    std::string name = "Virtual phone";
    /// Files; empty for none.
    std::string log;
    std::string picture;
    std::string readyFile;
    std::string control;
    Faults faults;
};

/// Reads the arguments behind the program's name.
[[nodiscard]] Parsed<Options> parseOptions(std::span<const char* const> arguments);

[[nodiscard]] std::string helpText();

} // namespace orbelantine::phone
