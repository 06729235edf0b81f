#include "input/window/linux/XPointerGrab.h"

#include <algorithm>

namespace orbelantine {

namespace {

constexpr std::uint16_t kGrabbedEvents =
    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION;

} // namespace

XPointerGrab::XPointerGrab(const XConnection& connection)
    : mConnection(connection)
    , mLibrary(connection.library()) {}

void XPointerGrab::capture(xcb_window_t window) {
    mCaptured = window;
    if (update() != XError::None)
        mCaptured = 0;
}

void XPointerGrab::releaseCapture() {
    mCaptured = 0;
    static_cast<void>(update());
}

XError XPointerGrab::clip(xcb_window_t window, const WindowApi::Rect& rectInWindow) {
    const xcb_window_t former = mFence;
    const auto size = [](std::int32_t from, std::int32_t to) {
        return static_cast<std::uint16_t>(std::max(to - from, 1));
    };
    mFence = mLibrary.xcb_generate_id(mConnection.get());
    mLibrary.xcb_create_window(
        mConnection.get(), 0, mFence, window, static_cast<std::int16_t>(rectInWindow.left),
        static_cast<std::int16_t>(rectInWindow.top), size(rectInWindow.left, rectInWindow.right),
        size(rectInWindow.top, rectInWindow.bottom), 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
    mLibrary.xcb_map_window(mConnection.get(), mFence);
    mClipped = window;
    const XError error = update();
    if (former != 0)
        mLibrary.xcb_destroy_window(mConnection.get(), former);
    if (error != XError::None)
        releaseClip();
    return error;
}

void XPointerGrab::releaseClip() {
    mClipped = 0;
    const xcb_window_t fence = std::exchange(mFence, 0);
    static_cast<void>(update());
    if (fence != 0)
        mLibrary.xcb_destroy_window(mConnection.get(), fence);
}

void XPointerGrab::release(xcb_window_t window) {
    if (mCaptured == window)
        releaseCapture();
    if (mClipped == window)
        releaseClip();
}

XError XPointerGrab::update() {
    const xcb_window_t window = mCaptured != 0 ? mCaptured : mClipped;
    if (window == 0) {
        mLibrary.xcb_ungrab_pointer(mConnection.get(), XCB_CURRENT_TIME);
        // From the return on, the server has done it.
        static_cast<void>(mConnection.focus());
        return XError::None;
    }
    const auto reply = mConnection.answer(
        mLibrary.xcb_grab_pointer_reply,
        mLibrary.xcb_grab_pointer(mConnection.get(), 0, window, kGrabbedEvents, XCB_GRAB_MODE_ASYNC,
                                  XCB_GRAB_MODE_ASYNC, mFence, XCB_NONE, XCB_CURRENT_TIME));
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS ? XError::None : XError::Grabbed;
}

} // namespace orbelantine
