#pragma once

#include "tools/aim_report/Trials.h"

#include <span>
#include <string>
#include <vector>

namespace orbelantine::aim {

/// What one phone, held in one way, was put through.
struct Run {
    Setup setup;
    std::vector<Trial> clicks;
    /// Empty where drags were not tried.
    std::vector<Trial> drags;
};

/// Of the trials' errors, in pixels of the phone. There is at least one trial.
struct Errors {
    explicit Errors(std::span<const Trial> trials);

    /// Percentages within the tolerance.
    double within3 = 0;
    double within8 = 0;
    double median = 0;
    double worst = 0;
};

/// The two tables for people.
[[nodiscard]] std::string reportOf(std::span<const Run> runs);

/// A line for each trial.
[[nodiscard]] std::string csvOf(std::span<const Run> runs);

} // namespace orbelantine::aim
