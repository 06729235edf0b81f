#pragma once

#include "tools/aim_report/Trials.h"
#include "tools/program/CommandLine.h"

#include <span>
#include <string>

namespace orbelantine::aim {

struct Options {
    Grid grid;
    /// Whether each line is shown.
    bool all = false;
    /// Files; empty for none.
    std::string csv;
    std::string picture;
    /// The one to draw.
    Setup drawn;
};

/// Reads the arguments behind the program's name.
[[nodiscard]] phone::Parsed<Options> parseOptions(std::span<const char* const> arguments);

[[nodiscard]] std::string helpText();

} // namespace orbelantine::aim
