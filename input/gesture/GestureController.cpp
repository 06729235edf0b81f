#include "input/gesture/GestureController.h"

#include "input/gesture/GestureStates.h"

namespace orbelantine {

namespace {

constexpr std::uint64_t kLongestGapMs = 500;
constexpr std::uint64_t kNsPerMs = 1000000;

} // namespace

GestureController::GestureController(IClock& clock)
    : StateMachine(clock) {
    post([this](const auto&) { changeState<GestureStateIdle>(); });
}

GestureController::~GestureController() {
    dropEvents();
    postAndWait([this](const auto&) { changeState<GestureStateIdle>(); });
}

bool GestureController::mouseDelta(std::int32_t dx, std::int32_t dy) {
    postEvent(&GestureState::mouseDelta, dx, dy);
    return true;
}

bool GestureController::mouseLButton(bool down) {
    postEvent(&GestureState::mouseLButton, down);
    return true;
}

std::uint64_t GestureController::nowNs() const {
    return static_cast<std::uint64_t>(clock().now().time_since_epoch().count());
}

std::uint64_t GestureController::elapsedMs() const {
    return (nowNs() - mBurst.lastEventNs) / kNsPerMs;
}

bool GestureController::isGap(std::uint64_t elapsedMs) const {
    return mBurst.lastEventNs != 0 && elapsedMs > kLongestGapMs;
}

void GestureController::count(std::uint64_t elapsedMs) {
    ++mBurst.eventCount;
    mBurst.intervalMs = static_cast<std::uint32_t>(elapsedMs);
    mBurst.lastEventNs = nowNs();
}

void GestureController::keepDelta(std::int32_t dx, std::int32_t dy) {
    mBurst.lastDx = dx;
    mBurst.lastDy = dy;
}

} // namespace orbelantine
