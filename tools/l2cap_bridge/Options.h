#pragma once

#include "tools/program/CommandLine.h"
#include "tools/virtual_phone/driver/Address.h"

#include <span>
#include <string>

namespace orbelantine::bridge {

struct Options {
    /// Empty for the default folder.
    std::string devices;
    /// The phone's; given on every command line.
    phone::Address address;
    bool hasAddress = false;
    /// The service's name in the record; empty for the library's own.
    std::string name;
    /// A file; empty for none.
    std::string log;
    bool publishRecord = true;
    /// D-Bus address; empty for the system bus.
    std::string bus;
};

/// What the process ends with.
enum ExitStatus : int {
    kExitSuccess = 0,
    kExitFailure = 1,
    kExitUsage = 2,
    kExitNoBluetooth = 3,
    kExitNoRecord = 4,
};

/// Reads the arguments behind the program's name.
[[nodiscard]] phone::Parsed<Options> parseOptions(std::span<const char* const> arguments);

[[nodiscard]] std::string helpText();

} // namespace orbelantine::bridge
