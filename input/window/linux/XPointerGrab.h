#pragma once

#include "input/window/linux/XConnection.h"

namespace orbelantine {

/// The one grab of the pointer that stands for both the capture and the clip. Under its owner's
/// lock.
class XPointerGrab {
  public:
    explicit XPointerGrab(const XConnection& connection);

    /// Each by the window that is to get the pointer's events.
    void capture(xcb_window_t window);
    void releaseCapture();
    [[nodiscard]] XError clip(xcb_window_t window, const WindowApi::Rect& rectInWindow);
    void releaseClip();
    /// Both, as far as they are of `window`.
    void release(xcb_window_t window);

    [[nodiscard]] bool isCaptured() const { return mCaptured != 0; }

  private:
    [[nodiscard]] XError update();
    void destroyFence();

    const XConnection& mConnection;
    const XLibrary& mLibrary;
    xcb_window_t mCaptured = 0;
    xcb_window_t mClipped = 0;
    /// Has the clip's rectangle.
    xcb_window_t mFence = 0;
};

} // namespace orbelantine
