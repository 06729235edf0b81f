#include "input/android/IntegratingVelocityTrackerStrategy.h"

#include <algorithm>
#include <type_traits>

namespace android {

namespace {

constexpr std::int64_t kMinimumStepNs = 2000000;
constexpr float kFilterSeconds = 0.01F;

} // namespace

IntegratingVelocityTrackerStrategy::IntegratingVelocityTrackerStrategy(std::uint32_t degree)
    : mDegree(degree) {
    static_assert(std::is_trivially_copyable_v<decltype(mStates)>);
}

void IntegratingVelocityTrackerStrategy::clear() {
    mPointerIdBits = {};
}

void IntegratingVelocityTrackerStrategy::clearPointers(IdBits ids) {
    mPointerIdBits.remove(ids);
}

void IntegratingVelocityTrackerStrategy::addMovement(std::int64_t eventTime, IdBits ids,
                                                     const Position* positions) {
    for (IdBits left = ids; !left.isEmpty(); left.remove(IdBits::of(left.first()))) {
        const std::uint32_t id = left.first();
        const Position& position = *positions++;
        if (mPointerIdBits.has(id))
            update(mStates[id], eventTime, position);
        else
            mStates[id] = {eventTime, 0, {position.x, 0, 0}, {position.y, 0, 0}};
    }
    mPointerIdBits = ids;
}

void IntegratingVelocityTrackerStrategy::update(State& state, std::int64_t eventTime,
                                                const Position& position) const {
    if (eventTime <= state.updateTime + kMinimumStepNs)
        return;
    const float dt = static_cast<float>(eventTime - state.updateTime) * 1e-9F;
    state.updateTime = eventTime;
    integrate(state.x, state.degree, position.x, dt);
    integrate(state.y, state.degree, position.y, dt);
    state.degree = std::min(state.degree + 1, mDegree);
}

void IntegratingVelocityTrackerStrategy::integrate(Axis& axis, std::uint32_t known, float position,
                                                   float dt) const {
    const float velocity = (position - axis.pos) / dt;
    const float alpha = dt / (dt + kFilterSeconds);
    axis.pos = position;
    if (known == 0) {
        axis.vel = velocity;
    } else if (mDegree == 1) {
        axis.vel += (velocity - axis.vel) * alpha;
    } else {
        const float acceleration = (velocity - axis.vel) / dt;
        if (known == 1)
            axis.accel = acceleration;
        else
            axis.accel += (acceleration - axis.accel) * alpha;
        axis.vel += axis.accel * dt * alpha;
    }
}

bool IntegratingVelocityTrackerStrategy::getEstimator(std::uint32_t id, Estimator& out) const {
    out = {};
    if (!mPointerIdBits.has(id))
        return false;
    const State& state = mStates[id];
    out.time = state.updateTime;
    out.confidence = 1;
    out.degree = state.degree;
    out.xCoeff = {state.x.pos, state.x.vel, state.x.accel * 0.5F};
    out.yCoeff = {state.y.pos, state.y.vel, state.y.accel * 0.5F};
    return true;
}

} // namespace android
