#pragma once

#include "input/android/VelocityTrackerStrategy.h"

#include <array>
#include <cstdint>
#include <memory>

namespace android {

/// Estimates the speed of pointers from timed positions, in position units per second. A copy
/// holds all the state of the original in memory of its own; assignment between trackers of one
/// strategy allocates nothing. One thread at a time.
class VelocityTracker {
  public:
    /// The name of the strategy where none is given, "lsq2"; may be changed to another, which must
    /// stay valid.
    static const char* defaultStrategyName;

    /// See createStrategy for the names. An unknown one is logged, and the default takes its
    /// place; where that is unknown as well the tracker estimates nothing.
    explicit VelocityTracker(const char* strategyName = nullptr);
    VelocityTracker(const VelocityTracker& other);
    VelocityTracker& operator=(const VelocityTracker& other);
    ~VelocityTracker() = default;

    [[nodiscard]] const char* strategyName() const { return mStrategyName.data(); }

    /// -1 if there is none.
    [[nodiscard]] std::int32_t activePointerId() const { return mActivePointerId; }

    /// Forgets every sample.
    void clear();
    /// Adds a sample at `eventTime` nanoseconds: one position for each id, in ascending order of
    /// the ids. The highest ids beyond 16 are dropped. A pointer that stays after a pause of 40 ms
    /// had stopped: the samples before are forgotten.
    void addMovement(std::int64_t eventTime, IdBits idBits, const Position* positions);
    /// False if there is no sample of the pointer.
    [[nodiscard]] bool getEstimator(std::uint32_t id, Estimator& out) const;
    /// False, with both 0, where the samples give no velocity.
    [[nodiscard]] bool getVelocity(std::uint32_t id, float& vx, float& vy) const;

  private:
    [[nodiscard]] bool useStrategy(const char* name);

    std::array<char, 32> mStrategyName{};
    std::int64_t mLastEventTime = 0;
    IdBits mCurrentPointerIdBits;
    std::int32_t mActivePointerId = -1;
    /// Null only where even the default name is unknown.
    std::unique_ptr<VelocityTrackerStrategy> mStrategy;
};

} // namespace android
