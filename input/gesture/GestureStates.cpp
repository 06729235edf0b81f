#include "input/gesture/GestureStates.h"

#include "core/common/log/Log.h"

#include <chrono>

namespace orbelantine {

namespace {

/// The events of a burst, its press and its release among them.
constexpr std::int32_t kBurstLength = 5;
constexpr std::int32_t kTicks = 5;

} // namespace

void GestureStateIdle::onEnter() {
    ORB_TRACED();
}

void GestureStateIdle::onExit() {
    ORB_TRACED();
}

bool GestureStateIdle::mouseLButton(bool down) {
    const std::uint64_t elapsed = owner().elapsedMs();
    if (!down || owner().isGap(elapsed)) {
        owner().reset();
        return false;
    }
    owner().count(elapsed);
    owner().changeState<GestureStateDetection>();
    return true;
}

void GestureStateDetection::onEnter() {
    ORB_TRACED();
}

void GestureStateDetection::onExit() {
    ORB_TRACED();
}

bool GestureStateDetection::mouseDelta(std::int32_t dx, std::int32_t dy) {
    const std::uint64_t elapsed = owner().elapsedMs();
    if (owner().isGap(elapsed)) {
        owner().endBurst();
        owner().changeState<GestureStateIdle>();
        return false;
    }
    owner().count(elapsed);
    if (dx >= 1 || dy >= 1)
        owner().keepDelta(dx, dy);
    return true;
}

bool GestureStateDetection::mouseLButton(bool down) {
    if (down) {
        owner().reset();
        return false;
    }
    const std::uint64_t elapsed = owner().elapsedMs();
    if (!owner().isGap(elapsed)) {
        owner().count(elapsed);
        if (owner().burst().eventCount >= kBurstLength) {
            owner().changeState<GestureStateInjection>();
            return true;
        }
    }
    owner().changeState<GestureStateIdle>();
    owner().reset();
    return false;
}

void GestureStateInjection::onEnter() {
    mTicks = 0;
    tick();
}

void GestureStateInjection::onExit() {
    cancelTimer();
    owner().reset();
}

bool GestureStateInjection::mouseDelta(std::int32_t /*dx*/, std::int32_t /*dy*/) {
    return tick();
}

bool GestureStateInjection::tick() {
    cancelTimer();
    if (mTicks >= kTicks)
        return false;
    const GestureBurst& burst = owner().burst();
    // This state is the current one whenever the event runs: it cancels the timer as it leaves.
    mTimer = owner().postDelayed(
        [this, dx = burst.lastDx, dy = burst.lastDy](const auto&) { inject(dx, dy); },
        std::chrono::milliseconds(burst.intervalMs));
    return true;
}

void GestureStateInjection::inject(std::int32_t dx, std::int32_t dy) {
    mTimer.reset();
    ++mTicks;
    owner().onInjection(dx, dy, mTicks >= kTicks);
}

void GestureStateInjection::cancelTimer() {
    if (!mTimer)
        return;
    mTimer->cancel();
    mTimer.reset();
}

bool GestureStateInjection::mouseLButton(bool down) {
    const std::uint64_t elapsed = owner().elapsedMs();
    if (!down)
        return false;
    if (owner().isGap(elapsed)) {
        owner().endBurst();
        return false;
    }
    owner().count(elapsed);
    owner().changeState<GestureStateDetection>();
    return true;
}

} // namespace orbelantine
