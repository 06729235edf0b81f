#pragma once

#include <cstddef>
#include <span>

namespace android {

/// The most samples and coefficients of one fit.
inline constexpr std::size_t kMaxFitSamples = 20;
inline constexpr std::size_t kMaxFitCoefficients = 4;

/// Fits the polynomial with the coefficients `b`, lowest power first, to the points (x, y) of
/// weights `w`, in single precision; `det` is the coefficient of determination, 1 for a perfect
/// fit. The spans x, y and w have one size, which is at least that of `b`. False if the points do
/// not determine the polynomial; `b` and `det` then keep their values.
[[nodiscard]] bool solveLeastSquares(std::span<const float> x, std::span<const float> y,
                                     std::span<const float> w, std::span<float> b, float& det);

} // namespace android
