#pragma once

#include "input/android/MovementHistory.h"

#include <cstdint>

namespace android {

/// Fits a polynomial to the samples of the last 100 ms, or fewer where there is a gap in them.
class LeastSquaresVelocityTrackerStrategy final : public HistoryStrategy {
  public:
    /// How much a sample counts.
    enum Weighting : std::uint8_t {
        WEIGHTING_NONE = 0,
        /// Less, the closer it is to the next one in time.
        WEIGHTING_DELTA = 1,
        /// Less at both ends of the last 60 ms.
        WEIGHTING_CENTRAL = 2,
        /// Less, the older it is, from 50 ms on.
        WEIGHTING_RECENT = 3,
    };

    /// `degree` is 1 to 3.
    explicit LeastSquaresVelocityTrackerStrategy(std::uint32_t degree,
                                                 Weighting weighting = WEIGHTING_NONE);

    [[nodiscard]] bool getEstimator(std::uint32_t id, Estimator& out) const override;

  private:
    struct Samples;

    void collect(std::uint32_t id, Samples& samples) const;
    /// False if the samples are too few or coincide in time.
    [[nodiscard]] bool fit(const Samples& samples, Estimator& out) const;
    [[nodiscard]] float chooseWeight(std::uint32_t slot) const;

    std::uint32_t mDegree;
    Weighting mWeighting;
};

} // namespace android
