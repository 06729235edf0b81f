#pragma once

#include "input/android/MovementHistory.h"

#include <cstdint>

namespace android {

/// Averages the velocities since the oldest sample of the last 200 ms, each weighted by its
/// duration.
class LegacyVelocityTrackerStrategy final : public HistoryStrategy {
  public:
    [[nodiscard]] bool getEstimator(std::uint32_t id, Estimator& out) const override;

  private:
    [[nodiscard]] std::uint32_t oldestSlot(std::uint32_t id) const;
};

} // namespace android
