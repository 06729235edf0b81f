#include "input/relative/RelativeMouseStates.h"

#include "core/common/log/Log.h"
#include "core/common/run/IDelayTimer.h"

#include <chrono>

namespace orbelantine {

namespace {

/// A raw move of this much on both axes only shows that the mouse is alive.
constexpr std::int32_t kJiggle = 999;
constexpr std::chrono::milliseconds kRehideDelay(1000);

bool isKnown(std::int32_t width, std::int32_t height) {
    return width >= 1 && height >= 1;
}

void logClick(const char* function, bool touch, bool down, const CursorPoint& at, bool reconnect) {
    ORB_LOG_TEXT(kLogDebug, "%s() touch=%d, down=%d, x=%d, y=%d, reconnect=%d", function, touch,
                 down, at.x, at.y, reconnect);
}

} // namespace

void RelativeMouseStateStart::onEnter() {
    owner().doInit();
}

void RelativeMouseStateStart::rmiServerStarted(error_code ec) {
    if (!ec)
        return;
    ORB_LOG(kLogDebug, "%s() ec=%d", ec.value());
    owner().setLastError(ec);
    owner().changeState<RelativeMouseStateFini>();
}

void RelativeMouseStateStart::rmiLogicalDimensions(std::int32_t width, std::int32_t height,
                                                   double /*scale*/, std::int32_t /*inset*/) {
    if (!isKnown(width, height))
        return;
    ORB_LOG(kLogDebug, "%s() %d,%d", width, height);
    // Parked here and once more on entry.
    owner().doMouseMoveHide();
    owner().changeState<RelativeMouseStateReady>();
}

void RelativeMouseStateReady::onEnter() {
    owner().doMouseMoveHide();
}

void RelativeMouseStateReady::onExit() {
    cancelRehideTimer();
}

void RelativeMouseStateReady::killFocus() {
    if (!isLeftHeld())
        return;
    CursorPoint point = owner().position();
    logClick(ORB_FUNCTION_NAME, false, false, point, false);
    cancelRehideTimer();
    point.flags = CursorPoint::LeftUp;
    owner().doMouseMove(point);
    owner().doMouseMoveHide();
}

void RelativeMouseStateReady::mouseMove(std::int32_t /*x*/, std::int32_t /*y*/,
                                        std::int32_t /*id*/) {}

void RelativeMouseStateReady::mouseLButton(bool down, std::int32_t x, std::int32_t y,
                                           std::int32_t /*id*/, bool reconnect) {
    doClick(false, down, x, y, reconnect);
}

void RelativeMouseStateReady::mouseRButton(bool down, std::int32_t /*x*/, std::int32_t /*y*/,
                                           bool /*reconnect*/) {
    owner().doSendMouseRButton(down);
}

void RelativeMouseStateReady::touchMove(std::int32_t x, std::int32_t y, std::int32_t /*id*/) {
    if (isLeftHeld())
        owner().doMouseMove(owner().logicalFromScreen({.x = x, .y = y}));
}

void RelativeMouseStateReady::touch(bool down, std::int32_t x, std::int32_t y, std::int32_t /*id*/,
                                    bool reconnect) {
    doClick(true, down, x, y, reconnect);
}

void RelativeMouseStateReady::rawMouseMove(std::int32_t dx, std::int32_t dy) {
    if (dx == kJiggle && dy == kJiggle) {
        owner().doSendRotated({.dx = -1, .dy = 0});
        owner().doSendRotated({.dx = 1, .dy = 0});
        return;
    }
    if (!isLeftHeld())
        return;
    ORB_LOG(kLogDebug, "%s() dx=%d, dy=%d", dx, dy);
    cancelRehideTimer();
    owner().doSendMouseDelta(dx, dy, true);
}

void RelativeMouseStateReady::mouseWheel(bool up, std::int32_t x, std::int32_t y,
                                         std::int32_t amount) {
    const CursorPoint point = owner().logicalUnderCursor(x, y);
    if (!mRehideTimer) {
        owner().doMouseMove(point);
        owner().doClickDelay();
    }
    cancelRehideTimer();
    owner().doSendMouseWheel(up, amount);
    startRehideTimer();
}

void RelativeMouseStateReady::rmiMousePosition(std::int32_t x, std::int32_t y) {
    CursorPoint point{.x = x, .y = y};
    if (x < 0 || y < 0 || !owner().doConvertRmiToDevicePosition(point))
        return;
    ORB_LOG(kLogDebug, "%s() RMI relative mouse detected: (%d, %d)", point.x, point.y);
    if (!owner().isEchoTime())
        owner().placeCursor(point);
}

void RelativeMouseStateReady::rmiLogicalDimensions(std::int32_t width, std::int32_t height,
                                                   double /*scale*/, std::int32_t /*inset*/) {
    ORB_LOG(kLogDebug, "%s() %d,%d", width, height);
    if (isKnown(width, height))
        owner().doMouseMoveHide();
}

void RelativeMouseStateReady::rotationChanged(std::int32_t rotation) {
    ORB_LOG(kLogDebug, "%s() %d", rotation);
    if (rotation != 0)
        owner().doMouseMoveHide();
}

void RelativeMouseStateReady::doClick(bool touch, bool down, std::int32_t x, std::int32_t y,
                                      bool reconnect) {
    logClick(ORB_FUNCTION_NAME, touch, down, {.x = x, .y = y}, reconnect);
    cancelRehideTimer();
    const CursorPoint point = clickPoint(touch, down, x, y);
    // A phone that has just come back may have its cursor anywhere.
    if (reconnect)
        owner().doMouseMoveHide();
    owner().doMouseMove(point);
    if (!down)
        owner().doMouseMoveHide();
}

CursorPoint RelativeMouseStateReady::clickPoint(bool touch, bool down, std::int32_t x,
                                                std::int32_t y) const {
    CursorPoint point{.x = x, .y = y, .flags = down ? CursorPoint::LeftDown : CursorPoint::LeftUp};
    if (touch)
        return owner().logicalFromScreen(point);
    if (down)
        return owner().logicalFromSurface(point);
    // A button's release stays where the drag has come to.
    point.x = owner().position().x;
    point.y = owner().position().y;
    return point;
}

bool RelativeMouseStateReady::isLeftHeld() const {
    return (owner().position().flags & CursorPoint::LeftDown) != 0;
}

void RelativeMouseStateReady::startRehideTimer() {
    // This state is the current one whenever the event runs: it cancels the timer as it leaves.
    mRehideTimer = owner().postDelayed(
        [this](const auto&) {
            cancelRehideTimer();
            owner().doMouseMoveHide();
        },
        kRehideDelay);
}

void RelativeMouseStateReady::cancelRehideTimer() {
    if (!mRehideTimer)
        return;
    mRehideTimer->cancel();
    mRehideTimer.reset();
}

void RelativeMouseStateFini::onEnter() {
    owner().doFini();
}

} // namespace orbelantine
