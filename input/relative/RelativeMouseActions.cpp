// What RelativeMouseSource does on its worker when a state tells it to.

#include "avstack/IInputMediaBufferMouse.h"
#include "avstack/IMediaElement.h"
#include "core/common/log/Log.h"
#include "input/relative/RelativeMouseSource.h"
#include "input/sources/IMouseReverser.h"

#include <boost/smart_ptr/make_shared_object.hpp>

namespace orbelantine {

namespace {

using Mouse = IInputMediaBufferMouse;

/// Drives the cursor into the corner of any phone.
constexpr CursorDelta kParkingDelta{.dx = kReach, .dy = kReach};
constexpr std::chrono::milliseconds kHideSettleTime(100);
constexpr std::int64_t kEchoGuardNs = 201000000;

} // namespace

void RelativeMouseSource::doSendMouseDelta(std::int32_t dx, std::int32_t dy, bool raw) {
    if (raw && mScaledViewport) {
        doSendRotated({.dx = draggedByRoot(dx, mMouseSpeed, mDragFactor),
                       .dy = draggedByRoot(dy, mMouseSpeed, mDragFactor)});
    } else {
        if (raw) {
            dx = draggedLinearly(dx, mMouseSpeed, mDragFactor);
            dy = draggedLinearly(dy, mMouseSpeed, mDragFactor);
        } else {
            mReverser->reverse(dx, dy);
        }
        sendTurned(dx, dy);
    }
    setPosition(advanced(mPosition, {.dx = dx, .dy = dy}, mLogical));
}

void RelativeMouseSource::sendTurned(std::int32_t& dx, std::int32_t& dy) {
    // The model of a turned phone's cursor advances by what is asked of the phone, and not, as
    // otherwise, by what the phone makes of it.
    if (isTurned(mRotation))
        doSendRotated({.dx = dx, .dy = dy});
    else
        doSendMouseDeltaAfterRotation(dx, dy);
}

void RelativeMouseSource::doSendRotated(CursorDelta delta) {
    CursorDelta sent = rotated(delta, mRotation);
    doSendMouseDeltaAfterRotation(sent.dx, sent.dy);
}

void RelativeMouseSource::doSendMouseDeltaAfterRotation(std::int32_t& dx, std::int32_t& dy) {
    if (dx == 0 && dy == 0)
        return;
    ORB_LOG(kLogDebug, "%s() move dx=%d, dy=%d", dx, dy);
    sendEvent(dx, dy, Mouse::Move, false);
    mLastSendNs = nowNs();
    mReverser->applyMove(dx, dy, mLastSendNs);
}

void RelativeMouseSource::doMouseMove(const CursorPoint& point) {
    if (point.x != mPosition.x || point.y != mPosition.y) {
        const CursorDelta move = difference(point, mPosition);
        if (mScaledViewport)
            doMoveScaled(point);
        else
            doSendMouseDelta(move.dx, move.dy, false);
    }
    // A move in several legs comes here once for each: the button's event repeats.
    if ((point.flags & CursorPoint::LeftDown) != 0) {
        doClickDelay();
        ORB_LOG(kLogDebug, "%s() left down");
        mPosition.flags = CursorPoint::LeftDown;
        doSendMouseLButton(true);
        doMouseLock();
    }
    if ((point.flags & CursorPoint::LeftUp) != 0) {
        ORB_LOG(kLogDebug, "%s() left up");
        doMouseUnlock();
        doSendMouseLButton(false);
        mPosition.flags = 0;
    }
}

void RelativeMouseSource::doMoveScaled(const CursorPoint& point) {
    const CursorDelta move = difference(point, mPosition);
    if (isLongMove(move)) {
        const CursorPoint mid = firstLegEnd(mPosition, move);
        doMouseMove(mid);
        placeCursor(mid);
        doMouseMove(point);
        return;
    }
    doSendRotated(curved(move));
    placeCursor(clamped(point, mLogical));
}

void RelativeMouseSource::doMouseMoveHide() {
    ORB_LOG(kLogDebug, "%s() ");
    if ((mPosition.flags & CursorPoint::LeftUp) != 0)
        doSendMouseLButton(false);
    doSendRotated(kParkingDelta);
    mHiddenPosition = {.x = saturated(std::int64_t{mLogical.width} - 1 + mInset),
                       .y = saturated(std::int64_t{mLogical.height} - 1 + mInset),
                       .flags = 0,
                       .timeNs = nowNs()};
    setPosition(mHiddenPosition);
    clock().sleepFor(kHideSettleTime);
}

void RelativeMouseSource::doClickDelay() {
    clock().sleepFor(mClickDelay);
}

void RelativeMouseSource::setPosition(const CursorPoint& point) {
    mPosition = point;
    mPosition.timeNs = nowNs();
}

void RelativeMouseSource::placeCursor(const CursorPoint& point) {
    setPosition({.x = point.x, .y = point.y, .flags = mPosition.flags});
}

bool RelativeMouseSource::isEchoTime() const {
    return nowNs() - mLastSendNs < kEchoGuardNs;
}

void RelativeMouseSource::doConvertToLogical(CursorPoint& point, std::int32_t width,
                                             std::int32_t height) {
    point = toLogical(point, {.width = width, .height = height}, mLogical);
    point.timeNs = nowNs();
}

bool RelativeMouseSource::doConvertRmiToDevicePosition(CursorPoint& point) {
    if (mRmi.width <= 0 || mRmi.height <= 0) {
        ORB_LOG(kLogError, "%s() no RMI viewport info available");
        return false;
    }
    doConvertToLogical(point, mRmi.width, mRmi.height);
    return true;
}

CursorPoint RelativeMouseSource::logicalFromSurface(CursorPoint point) {
    const CursorExtent surface = surfaceExtent();
    doConvertToLogical(point, surface.width, surface.height);
    return point;
}

CursorPoint RelativeMouseSource::logicalFromScreen(CursorPoint point) {
    const IInputContext::Point origin = surfaceOrigin();
    point.x = saturated(std::int64_t{point.x} - origin.x);
    point.y = saturated(std::int64_t{point.y} - origin.y);
    return logicalFromSurface(point);
}

CursorPoint RelativeMouseSource::logicalUnderCursor(std::int32_t x, std::int32_t y) {
    IInputContext::Point point{.x = x, .y = y};
    mContext->screenToInputSurface(point);
    return logicalFromSurface({.x = point.x, .y = point.y});
}

CursorExtent RelativeMouseSource::surfaceExtent() {
    IInputContext::Rect rect{};
    mContext->getInputSurfaceRectWithinScreen(rect);
    return extentOf(rect);
}

IInputContext::Point RelativeMouseSource::surfaceOrigin() {
    IInputContext::Point origin{};
    mContext->inputSurfaceToScreen(origin);
    return origin;
}

void RelativeMouseSource::doMouseLock() {
    ORB_LOG(kLogDebug, "%s() ");
    if (hasLogicalDimensions())
        mContext->lockSystemMouse();
}

void RelativeMouseSource::doMouseUnlock() {
    if (!hasLogicalDimensions())
        return;
    const CursorExtent surface = surfaceExtent();
    const IInputContext::Point origin = surfaceOrigin();
    const std::int32_t x =
        saturated(std::int64_t{rescaled(mPosition.x, mLogical.width, surface.width)} + origin.x);
    const std::int32_t y =
        saturated(std::int64_t{rescaled(mPosition.y, mLogical.height, surface.height)} + origin.y);
    ORB_LOG(kLogDebug, "%s() current pos=(%d,%d), screen pos=(%d,%d)", mPosition.x, mPosition.y, x,
            y);
    mContext->unlockSystemMouse(x, y);
}

void RelativeMouseSource::doSendMouseLButton(bool down) {
    ORB_LOG(kLogDebug, "%s() down=%d", down);
    sendEvent(0, 0, Mouse::LeftUp + down, true);
}

void RelativeMouseSource::doSendMouseRButton(bool down) {
    ORB_LOG(kLogDebug, "%s() down=%d", down);
    sendEvent(0, 0, Mouse::RightUp + down, true);
}

void RelativeMouseSource::doSendMouseWheel(bool up, std::int32_t amount) {
    ORB_LOG(kLogDebug, "%s() down=%d, z=%d", up, amount);
    sendEvent(0, amount, Mouse::WheelNonPositive + up, true);
}

void RelativeMouseSource::sendEvent(std::int32_t x, std::int32_t y, int type, bool networkOrder) {
    if (!mTarget)
        return;
    // Stored as it stands, whatever the order is called: nobody swaps it.
    const Mouse::EventData event{
        .x = x, .y = y, .type = static_cast<std::uint8_t>(type), .maxX = 0, .maxY = 0};
    mTarget->onFrame(
        boost::make_shared<Mouse>(event, networkOrder, IMediaBuffer::getNowTimestamp()));
}

} // namespace orbelantine
