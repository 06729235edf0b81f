#include "input/android/LeastSquares.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace android {

namespace {

constexpr float kDeterminantLimit = 0.000001F;

/// One row for each coefficient.
using Rows = float[kMaxFitCoefficients][kMaxFitSamples];

float dot(const float* a, const float* b, std::size_t size) {
    return std::inner_product(a, a + size, b, 0.0F);
}

/// The weighted powers of x.
void buildPowers(std::span<const float> x, std::span<const float> w, std::size_t n, Rows& a) {
    for (std::size_t h = 0; h < x.size(); ++h) {
        a[0][h] = w[h];
        for (std::size_t i = 1; i < n; ++i)
            a[i][h] = a[i - 1][h] * x[h];
    }
}

/// Makes row j of q out of that of a: of unit length, at right angles to the rows before it. False
/// if it depends on them.
bool orthonormalize(const Rows& a, std::size_t j, std::size_t m, Rows& q) {
    std::copy_n(a[j], m, q[j]);
    for (std::size_t i = 0; i < j; ++i) {
        const float along = dot(q[j], q[i], m);
        for (std::size_t h = 0; h < m; ++h)
            q[j][h] -= along * q[i][h];
    }
    const float norm = std::sqrt(dot(q[j], q[j], m));
    if (norm < kDeterminantLimit)
        return false;
    for (std::size_t h = 0; h < m; ++h)
        q[j][h] /= norm;
    return true;
}

/// Back substitution; the upper triangle R is the product of q and a.
void substitute(const Rows& a, const Rows& q, std::span<const float> y, std::span<const float> w,
                std::span<float> b) {
    float wy[kMaxFitSamples];
    for (std::size_t h = 0; h < y.size(); ++h)
        wy[h] = y[h] * w[h];
    for (std::size_t i = b.size(); i-- > 0;) {
        b[i] = dot(q[i], wy, y.size());
        for (std::size_t j = b.size() - 1; j > i; --j)
            b[i] -= dot(q[i], a[j], y.size()) * b[j];
        b[i] /= dot(q[i], a[i], y.size());
    }
}

float determination(std::span<const float> x, std::span<const float> y, std::span<const float> w,
                    std::span<const float> b) {
    const float mean = std::accumulate(y.begin(), y.end(), 0.0F) / static_cast<float>(y.size());
    float errors = 0;
    float total = 0;
    for (std::size_t h = 0; h < y.size(); ++h) {
        float error = y[h] - b[0];
        float power = 1;
        for (std::size_t i = 1; i < b.size(); ++i) {
            power *= x[h];
            error -= power * b[i];
        }
        const float variance = y[h] - mean;
        errors += w[h] * w[h] * error * error;
        total += w[h] * w[h] * variance * variance;
    }
    return total > kDeterminantLimit ? 1.0F - errors / total : 1.0F;
}

} // namespace

bool solveLeastSquares(std::span<const float> x, std::span<const float> y, std::span<const float> w,
                       std::span<float> b, float& det) {
    Rows a;
    Rows q;
    buildPowers(x, w, b.size(), a);
    for (std::size_t j = 0; j < b.size(); ++j)
        if (!orthonormalize(a, j, x.size(), q))
            return false;
    substitute(a, q, y, w, b);
    det = determination(x, y, w, b);
    return true;
}

} // namespace android
