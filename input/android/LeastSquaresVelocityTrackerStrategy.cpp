#include "input/android/LeastSquaresVelocityTrackerStrategy.h"

#include "input/android/LeastSquares.h"

#include <algorithm>
#include <span>

namespace android {

namespace {

constexpr std::int64_t kHorizonNs = 100000000;
constexpr float kSecondsPerNs = 1e-9F;
constexpr float kMillisPerNs = 1e-6F;

float millis(std::int64_t ns) {
    return static_cast<float>(ns) * kMillisPerNs;
}

float weightByDelta(float delta) {
    if (delta < 0)
        return 0.5F;
    if (delta < 10)
        return 0.5F + delta * 0.05F;
    return 1;
}

float weightCentral(float age) {
    if (age < 0)
        return 0.5F;
    if (age < 10)
        return 0.5F + age * 0.05F;
    if (age < 50)
        return 1;
    if (age < 60)
        return 0.5F + (60 - age) * 0.05F;
    return 0.5F;
}

float weightRecent(float age) {
    if (age < 50)
        return 1;
    if (age < 100)
        return 0.5F + (100 - age) * 0.01F;
    return 0.5F;
}

} // namespace

/// A pointer's samples, newest first; times are seconds before the newest.
struct LeastSquaresVelocityTrackerStrategy::Samples {
    static_assert(MovementHistory::kSize <= kMaxFitSamples);
    using Values = float[MovementHistory::kSize];

    Values time;
    Values x;
    Values y;
    Values w;
    std::uint32_t count = 0;

    [[nodiscard]] std::span<const float> of(const Values& values) const { return {values, count}; }
};

LeastSquaresVelocityTrackerStrategy::LeastSquaresVelocityTrackerStrategy(std::uint32_t degree,
                                                                         Weighting weighting)
    : mDegree(degree)
    , mWeighting(weighting) {}

void LeastSquaresVelocityTrackerStrategy::collect(std::uint32_t id, Samples& samples) const {
    const std::int64_t newestTime = history().newest().eventTime;
    std::uint32_t slot = history().newestSlot();
    for (std::uint32_t& m = samples.count; m < MovementHistory::kSize; ++m) {
        const Movement& movement = history().at(slot);
        const std::int64_t age = newestTime - movement.eventTime;
        if (!movement.idBits.has(id) || age > kHorizonNs)
            return;
        const Position& position = movement.position(id);
        samples.x[m] = position.x;
        samples.y[m] = position.y;
        samples.w[m] = chooseWeight(slot);
        samples.time[m] = static_cast<float>(-age) * kSecondsPerNs;
        slot = MovementHistory::older(slot);
    }
}

float LeastSquaresVelocityTrackerStrategy::chooseWeight(std::uint32_t slot) const {
    const std::int64_t time = history().at(slot).eventTime;
    switch (mWeighting) {
    case WEIGHTING_DELTA:
        if (slot == history().newestSlot())
            return 1;
        return weightByDelta(millis(history().at(MovementHistory::newer(slot)).eventTime - time));
    case WEIGHTING_CENTRAL:
        return weightCentral(millis(history().newest().eventTime - time));
    case WEIGHTING_RECENT:
        return weightRecent(millis(history().newest().eventTime - time));
    case WEIGHTING_NONE:
        break;
    }
    return 1;
}

bool LeastSquaresVelocityTrackerStrategy::fit(const Samples& samples, Estimator& out) const {
    const std::uint32_t degree = std::min(mDegree, samples.count - 1);
    if (degree == 0)
        return false;
    const auto time = samples.of(samples.time);
    const auto w = samples.of(samples.w);
    const std::span xCoeff(out.xCoeff.data(), degree + 1);
    const std::span yCoeff(out.yCoeff.data(), degree + 1);
    float xDet = 0;
    float yDet = 0;
    if (!solveLeastSquares(time, samples.of(samples.x), w, xCoeff, xDet) ||
        !solveLeastSquares(time, samples.of(samples.y), w, yCoeff, yDet))
        return false;
    out.degree = degree;
    out.confidence = xDet * yDet;
    return true;
}

bool LeastSquaresVelocityTrackerStrategy::getEstimator(std::uint32_t id, Estimator& out) const {
    out = {};
    Samples samples;
    collect(id, samples);
    if (samples.count == 0)
        return false;

    out.time = history().newest().eventTime;
    if (!fit(samples, out)) {
        out.xCoeff = {samples.x[0]};
        out.yCoeff = {samples.y[0]};
        out.confidence = 1;
    }
    return true;
}

} // namespace android
