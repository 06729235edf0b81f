#include "input/sources/AndroidMouseReverser.h"

#include "core/common/OSAL.h"
#include "core/common/log/Log.h"
#include "input/android/VelocityControl.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orbelantine {

ORB_OSAL_REGISTER(IMouseReverser, AndroidMouseReverser, "AndroidMouseReverser", IClock&);

namespace {

constexpr VelocityControlParameters kPhone = {
    .scale = 1, .lowThreshold = 500, .highThreshold = 3000, .acceleration = 3};
constexpr float kTolerance = 2;
constexpr int kIterationLimit = 50;

std::int64_t nowNs(const IClock& clock) {
    return clock.now().time_since_epoch().count();
}

std::int32_t truncated(float value) {
    // The float nearest to the greatest integer lies beyond it.
    constexpr float kLeast = -2147483648.0F;
    if (value >= -kLeast)
        return std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::max(value, kLeast));
}

/// A bisection between nothing and the wanted delta, along the axis of the signed maximum: signs
/// and not magnitudes choose the axis. The other axis is rescaled in step, rounding each time.
class Bisection {
  public:
    Bisection(std::int32_t x, std::int32_t y)
        : mXLarger(x > y)
        , mHi(std::max(x, y))
        , mLo(std::min(x, y))
        , mUpper(mHi)
        , mTarget(static_cast<float>(mHi)) {}

    [[nodiscard]] std::int32_t x() const { return mXLarger ? mHi : mLo; }

    [[nodiscard]] std::int32_t y() const { return mXLarger ? mLo : mHi; }

    /// Takes the next candidate, given what became of this one. False if this one is the result.
    bool refine(const VelocityControl::Delta& outcome) {
        const float reached = mXLarger ? outcome.x : outcome.y;
        if (std::abs(mTarget - reached) < kTolerance || mHi == 0)
            return false;
        (std::abs(mTarget) > std::abs(reached) ? mLower : mUpper) = mHi;
        // The wider type holds every sum and product of the operands.
        const std::int64_t mid = (std::int64_t{mUpper} + mLower) / 2;
        mLo = static_cast<std::int32_t>(mid * mLo / mHi);
        mHi = static_cast<std::int32_t>(mid);
        return true;
    }

  private:
    bool mXLarger;
    std::int32_t mHi;
    std::int32_t mLo;
    std::int32_t mLower = 0;
    std::int32_t mUpper;
    float mTarget;
};

} // namespace

AndroidMouseReverser::AndroidMouseReverser(IClock& clock)
    : mClock(clock)
    , mControl(boost::make_shared<VelocityControl>())
    , mStartNs(nowNs(clock)) {
    ORB_LOG(kLogDebug, "%s() ");
    mControl->setParameters(kPhone);
}

void AndroidMouseReverser::applyMove(std::int32_t& dx, std::int32_t& dy,
                                     const std::int64_t& timeNs) {
    const auto moved =
        mControl->move(timeNs - mStartNs, static_cast<float>(dx), static_cast<float>(dy));
    dx = truncated(moved.x);
    dy = truncated(moved.y);
}

void AndroidMouseReverser::reverse(std::int32_t& dx, std::int32_t& dy) {
    const std::int64_t time = nowNs(mClock) - mStartNs;
    Bisection search(dx, dy);
    VelocityControl trial(*mControl);
    int count = 0;
    while (search.refine(
        trial.move(time, static_cast<float>(search.x()), static_cast<float>(search.y())))) {
        if (++count >= kIterationLimit) {
            ORB_LOG(kLogTrace, "%s: maximum number of iteratiuon reached (%d)", count);
            break;
        }
        trial = *mControl;
    }
    dx = search.x();
    dy = search.y();
}

} // namespace orbelantine
