#pragma once

#include "tools/aim_report/Trials.h"

#include <span>
#include <string>
#include <vector>

namespace orbelantine::aim {

/// What one phone, held in one way, was put through.
struct Run {
    Setup setup;
    std::vector<Trial> trials;
};

/// A line for each kind of gesture, with a verdict in words.
[[nodiscard]] std::string summaryOf(std::span<const Run> runs);

/// A line for each kind of gesture on each phone, and for each direction of drags.
[[nodiscard]] std::string wholeTableOf(std::span<const Run> runs);

/// A line for each trial.
[[nodiscard]] std::string csvOf(std::span<const Run> runs);

} // namespace orbelantine::aim
