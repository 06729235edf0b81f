#include "input/android/VelocityTracker.h"

#include "core/common/log/Log.h"

#include <cstring>

namespace android {

namespace {

constexpr std::int64_t kPointerStoppedNs = 40000000;

} // namespace

const char* VelocityTracker::defaultStrategyName = "lsq2";

VelocityTracker::VelocityTracker(const char* strategyName) {
    const char* name = strategyName == nullptr ? defaultStrategyName : strategyName;
    if (useStrategy(name))
        return;
    ORB_LOG_TEXT(orbelantine::kLogDebug, "Unrecognized velocity tracker strategy name '%s'.", name);
    if (!useStrategy(defaultStrategyName))
        ORB_LOG_TEXT(orbelantine::kLogError,
                     "Could not create the default velocity tracker strategy '%s'!",
                     defaultStrategyName);
}

bool VelocityTracker::useStrategy(const char* name) {
    mStrategyName.fill('\0');
    std::strncpy(mStrategyName.data(), name, mStrategyName.size() - 1);
    mStrategy = createStrategy(name, nullptr);
    return mStrategy != nullptr;
}

VelocityTracker::VelocityTracker(const VelocityTracker& other)
    : mStrategyName(other.mStrategyName)
    , mLastEventTime(other.mLastEventTime)
    , mCurrentPointerIdBits(other.mCurrentPointerIdBits)
    , mActivePointerId(other.mActivePointerId)
    , mStrategy(createStrategy(other.strategyName(), other.mStrategy.get())) {}

VelocityTracker& VelocityTracker::operator=(const VelocityTracker& other) {
    if (this == &other)
        return *this;
    const bool sameStrategy = mStrategy && other.mStrategy && mStrategyName == other.mStrategyName;
    if (sameStrategy)
        copyStrategy(strategyName(), *other.mStrategy, *mStrategy);
    else
        mStrategy = createStrategy(other.strategyName(), other.mStrategy.get());
    mStrategyName = other.mStrategyName;
    mLastEventTime = other.mLastEventTime;
    mCurrentPointerIdBits = other.mCurrentPointerIdBits;
    mActivePointerId = other.mActivePointerId;
    return *this;
}

void VelocityTracker::clear() {
    mCurrentPointerIdBits = {};
    mActivePointerId = -1;
    if (mStrategy)
        mStrategy->clear();
}

void VelocityTracker::addMovement(std::int64_t eventTime, IdBits idBits,
                                  const Position* positions) {
    while (idBits.count() > kMaxPointers)
        idBits.removeLast();

    if (mStrategy && mCurrentPointerIdBits.overlaps(idBits) &&
        eventTime >= mLastEventTime + kPointerStoppedNs)
        mStrategy->clear();
    mLastEventTime = eventTime;
    mCurrentPointerIdBits = idBits;

    const bool isActive =
        mActivePointerId >= 0 && idBits.has(static_cast<std::uint32_t>(mActivePointerId));
    if (!isActive)
        mActivePointerId = idBits.isEmpty() ? -1 : static_cast<std::int32_t>(idBits.first());
    if (mStrategy)
        mStrategy->addMovement(eventTime, idBits, positions);
}

bool VelocityTracker::getEstimator(std::uint32_t id, Estimator& out) const {
    if (mStrategy)
        return mStrategy->getEstimator(id, out);
    out = {};
    return false;
}

bool VelocityTracker::getVelocity(std::uint32_t id, float& vx, float& vy) const {
    Estimator estimator;
    const bool known = getEstimator(id, estimator) && estimator.degree >= 1;
    vx = known ? estimator.xCoeff[1] : 0;
    vy = known ? estimator.yCoeff[1] : 0;
    return known;
}

} // namespace android
