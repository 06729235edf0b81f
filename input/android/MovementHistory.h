#pragma once

#include "input/android/VelocityTrackerStrategy.h"

#include <array>
#include <cstdint>

namespace android {

/// One sample of every pointer that was down.
struct Movement {
    std::int64_t eventTime = 0;
    IdBits idBits;
    /// In ascending order of the ids.
    std::array<Position, kMaxPointers> positions{};

    /// `id` is in idBits.
    [[nodiscard]] const Position& position(std::uint32_t id) const {
        return positions[idBits.rank(id)];
    }
};

/// The newest samples, as a ring. Plain data without a pointer.
class MovementHistory {
  public:
    static constexpr std::uint32_t kSize = 20;

    [[nodiscard]] const Movement& newest() const { return mMovements[mIndex]; }

    [[nodiscard]] std::uint32_t newestSlot() const { return mIndex; }

    [[nodiscard]] const Movement& at(std::uint32_t slot) const { return mMovements[slot]; }

    [[nodiscard]] static constexpr std::uint32_t older(std::uint32_t slot) {
        return (slot == 0 ? kSize : slot) - 1;
    }

    [[nodiscard]] static constexpr std::uint32_t newer(std::uint32_t slot) {
        return slot + 1 == kSize ? 0 : slot + 1;
    }

    void clear();
    /// Takes the pointers out of the newest sample.
    void clearPointers(IdBits ids);
    void add(std::int64_t eventTime, IdBits ids, const Position* positions);

  private:
    std::uint32_t mIndex = 0;
    std::array<Movement, kSize> mMovements{};
};

/// What the strategies have in common that look back over a history of samples.
class HistoryStrategy : public VelocityTrackerStrategy {
  public:
    void clear() override { mHistory.clear(); }

    void clearPointers(IdBits ids) override { mHistory.clearPointers(ids); }

    void addMovement(std::int64_t eventTime, IdBits ids, const Position* positions) override {
        mHistory.add(eventTime, ids, positions);
    }

  protected:
    [[nodiscard]] const MovementHistory& history() const { return mHistory; }

  private:
    MovementHistory mHistory;
};

} // namespace android
