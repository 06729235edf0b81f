#pragma once

#include "input/window/linux/XConnection.h"
#include "input/window/linux/XKeyboard.h"
#include "input/window/linux/XPointerGrab.h"

#include <map>
#include <vector>

namespace orbelantine {

[[nodiscard]] inline xcb_window_t xWindowOf(WindowApi::Handle window) {
    return static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(window));
}

/// The host's windows with a child of ours over each, which gets what the user does there: an X
/// client may not ask for the buttons of another's window. Under its owner's lock.
class XSurfaces {
  public:
    using Messages = std::vector<WindowMessage>;

    explicit XSurfaces(const XConnection& connection);

    [[nodiscard]] XError add(xcb_window_t host);
    void remove(xcb_window_t host);

    [[nodiscard]] bool isEmpty() const { return mSurfaces.empty(); }

    [[nodiscard]] bool has(xcb_window_t host) const { return mSurfaces.contains(host); }

    void translate(const xcb_generic_event_t& event, Messages& messages);

    /// Whether the next event decides who has the focus.
    [[nodiscard]] bool isFocusOpen() const { return mLeaving != 0; }

    /// `next` is null if there is no event to come.
    void settleFocus(const xcb_generic_event_t* next, Messages& messages);
    /// All windows at the end of the server.
    [[nodiscard]] Messages destroyed() const;

    void setFocus(xcb_window_t host);
    void setCapture(xcb_window_t host);
    void releaseCapture();
    [[nodiscard]] XError clip(const WindowApi::Rect* rect);
    void showCursor(xcb_window_t host, bool shown);
    [[nodiscard]] XError setRawTarget(xcb_window_t host);

    [[nodiscard]] XKeyboard& keyboard() { return mKeyboard; }

  private:
    struct Surface {
        xcb_window_t child = 0;
        bool hostHasFocus = false;
        bool childHasFocus = false;
        bool cursorHidden = false;

        [[nodiscard]] bool hasFocus() const { return hostHasFocus || childHasFocus; }
    };

    using Found = std::map<xcb_window_t, Surface>::iterator;

    [[nodiscard]] Found find(xcb_window_t window);
    /// The surface that a place of the screen lies in.
    [[nodiscard]] Found at(WindowApi::Point place);
    void onKey(const xcb_key_press_event_t& event, Messages& messages);
    void onButton(const xcb_button_press_event_t& event, Messages& messages);
    void onMotion(const xcb_motion_notify_event_t& event, Messages& messages);
    void onFocus(const xcb_focus_in_event_t& event, Messages& messages);
    void onFocusOut(Found surface, const xcb_focus_in_event_t& event);
    void onResize(const xcb_configure_notify_event_t& event);
    void onUnmap(xcb_window_t host);
    void onRawMotion(const xcb_generic_event_t& event, Messages& messages);
    [[nodiscard]] bool isAbsolute(xcb_input_device_id_t device);
    void tellFocus(Found surface, bool had, Messages& messages);
    xcb_cursor_t emptyCursor();

    const XConnection& mConnection;
    const XLibrary& mLibrary;
    XKeyboard mKeyboard;
    XPointerGrab mGrab;
    std::map<xcb_window_t, Surface> mSurfaces;
    std::uint8_t mInputOpcode;
    xcb_window_t mLeaving = 0;
    xcb_window_t mRawTarget = 0;
    std::map<xcb_input_device_id_t, bool> mAbsoluteDevices;
    double mRawX = 0;
    double mRawY = 0;
    xcb_cursor_t mEmptyCursor = 0;
};

} // namespace orbelantine
