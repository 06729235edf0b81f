#pragma once

#include "core/common/Clock.h"

#include <functional>
#include <utility>
#include <vector>

namespace orbelantine::test {

/// Time that passes only when told to, or by a pause.
class HandClock final : public IClock {
  public:
    [[nodiscard]] TimePoint now() const override { return mNow; }

    void sleepFor(Duration pause) override {
        mNow += pause;
        mPauses.push_back(pause);
        if (mOnPause)
            mOnPause();
    }

    void advance(Duration time) { mNow += time; }

    /// Runs at the end of each pause.
    void onPause(std::function<void()> hook) { mOnPause = std::move(hook); }

    [[nodiscard]] const std::vector<Duration>& pauses() const { return mPauses; }

  private:
    TimePoint mNow{};
    std::vector<Duration> mPauses;
    std::function<void()> mOnPause;
};

} // namespace orbelantine::test
