#pragma once

#include "input/android/Estimator.h"
#include "input/android/IdBits.h"

#include <cstdint>
#include <memory>

namespace android {

/// The most pointers in one movement.
inline constexpr std::uint32_t kMaxPointers = 16;

struct Position {
    float x = 0;
    float y = 0;
};

/// A way to estimate motion from timed positions. The state is a plain fixed array, so a copy is
/// one block copy. One thread at a time.
class VelocityTrackerStrategy {
  public:
    virtual ~VelocityTrackerStrategy() = default;
    /// Forgets every sample.
    virtual void clear() = 0;
    /// Takes the pointers out of what was last added.
    virtual void clearPointers(IdBits ids) = 0;
    /// Adds a sample at `eventTime` nanoseconds: one position for each of at most kMaxPointers
    /// ids, in ascending order of the ids.
    virtual void addMovement(std::int64_t eventTime, IdBits ids, const Position* positions) = 0;
    /// False, with `out` all zero, if there is no sample of the pointer.
    [[nodiscard]] virtual bool getEstimator(std::uint32_t id, Estimator& out) const = 0;

  protected:
    VelocityTrackerStrategy() = default;
    VelocityTrackerStrategy(const VelocityTrackerStrategy&) = default;
    VelocityTrackerStrategy& operator=(const VelocityTrackerStrategy&) = default;
};

/// The strategy of exactly this name, null if there is none: "lsq1", "lsq2", "lsq3",
/// "wlsq2-delta", "wlsq2-central", "wlsq2-recent", "int1", "int2" or "legacy". It begins as a copy
/// of `source`, if given, which was made under the same name.
[[nodiscard]] std::unique_ptr<VelocityTrackerStrategy>
createStrategy(const char* name, const VelocityTrackerStrategy* source);

/// Gives `target` the state of `source` in place. Both were made under `name`.
void copyStrategy(const char* name, const VelocityTrackerStrategy& source,
                  VelocityTrackerStrategy& target);

} // namespace android
