#include "input/android/LegacyVelocityTrackerStrategy.h"

namespace android {

namespace {

constexpr std::int64_t kLegacyHorizonNs = 200000000;
constexpr std::int64_t kMinimumDurationNs = 10000000;

/// The mean velocity of a motion, sample by sample.
struct Average {
    Position velocity;
    std::int64_t accumulated = 0;
    std::uint32_t count = 0;

    void add(const Position& from, const Position& to, std::int64_t duration) {
        const float perSecond = 1e9F / static_cast<float>(duration);
        velocity.x = merge(velocity.x, (to.x - from.x) * perSecond, duration);
        velocity.y = merge(velocity.y, (to.y - from.y) * perSecond, duration);
        accumulated = duration;
        ++count;
    }

  private:
    [[nodiscard]] float merge(float running, float added, std::int64_t duration) const {
        return (added * static_cast<float>(duration) + running * static_cast<float>(accumulated)) /
               static_cast<float>(accumulated + duration);
    }
};

} // namespace

std::uint32_t LegacyVelocityTrackerStrategy::oldestSlot(std::uint32_t id) const {
    const std::int64_t horizon = history().newest().eventTime - kLegacyHorizonNs;
    std::uint32_t oldest = history().newestSlot();
    for (std::uint32_t samples = 1; samples < MovementHistory::kSize; ++samples) {
        const std::uint32_t slot = MovementHistory::older(oldest);
        const Movement& movement = history().at(slot);
        if (!movement.idBits.has(id) || movement.eventTime < horizon)
            break;
        oldest = slot;
    }
    return oldest;
}

bool LegacyVelocityTrackerStrategy::getEstimator(std::uint32_t id, Estimator& out) const {
    out = {};
    const Movement& newest = history().newest();
    if (!newest.idBits.has(id))
        return false;

    std::uint32_t slot = oldestSlot(id);
    const Movement& start = history().at(slot);
    Average average;
    while (slot != history().newestSlot()) {
        slot = MovementHistory::newer(slot);
        const Movement& movement = history().at(slot);
        const std::int64_t duration = movement.eventTime - start.eventTime;
        if (duration >= kMinimumDurationNs)
            average.add(start.position(id), movement.position(id), duration);
    }

    out.time = newest.eventTime;
    out.confidence = 1;
    out.degree = average.count == 0 ? 0 : 1;
    out.xCoeff = {newest.position(id).x, average.velocity.x};
    out.yCoeff = {newest.position(id).y, average.velocity.y};
    return true;
}

} // namespace android
