#pragma once

#include <array>
#include <cstdint>

namespace android {

/// A pointer's motion near `time`: its position t seconds later is the polynomial of these
/// coefficients, lowest power first, so [1] is the velocity per second.
struct Estimator {
    /// Nanoseconds.
    std::int64_t time = 0;
    std::array<float, 5> xCoeff{};
    std::array<float, 5> yCoeff{};
    /// The highest power in use; 0 is a position without a velocity.
    std::uint32_t degree = 0;
    /// 1 is a perfect fit.
    float confidence = 0;
};

} // namespace android
