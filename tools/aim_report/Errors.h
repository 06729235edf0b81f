#pragma once

#include "tools/aim_report/Trials.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace orbelantine::aim {

/// What several trials of one gesture come to, in pixels of the phone. There is at least one.
class Errors {
  public:
    explicit Errors(std::span<const Trial> trials);

    [[nodiscard]] std::size_t count() const { return mErrors.size(); }

    /// A percentage.
    [[nodiscard]] double within(double pixels) const;
    [[nodiscard]] double median() const;

    [[nodiscard]] double worst() const { return mErrors.back(); }

    /// The median of the drags' farthest distances from the finger; nothing for clicks.
    [[nodiscard]] std::optional<double> path() const;

    [[nodiscard]] const char* verdict() const;

  private:
    // Sorted.
    std::vector<double> mErrors;
    std::vector<double> mPaths;
};

} // namespace orbelantine::aim
