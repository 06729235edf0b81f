#include "input/window/linux/XSurfaces.h"

#include <iterator>
#include <utility>

namespace orbelantine {

namespace {

constexpr std::uint32_t kHostEvents = XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                      XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_KEY_PRESS |
                                      XCB_EVENT_MASK_KEY_RELEASE;
constexpr std::uint32_t kChildEvents =
    XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE |
    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION;

} // namespace

XSurfaces::XSurfaces(const XConnection& connection)
    : mConnection(connection)
    , mLibrary(connection.library())
    , mKeyboard(connection)
    , mGrab(connection)
    , mInputOpcode(connection.extension("XInputExtension")) {
    constexpr std::uint16_t kMajor = 2;
    constexpr std::uint16_t kMinor = 2;
    static_cast<void>(
        connection.answer(mLibrary.xcb_input_xi_query_version_reply,
                          mLibrary.xcb_input_xi_query_version(connection.get(), kMajor, kMinor)));
}

XError XSurfaces::add(xcb_window_t host) {
    const auto geometry = mConnection.geometry(host);
    if (!geometry)
        return XError::NoWindow;
    Surface surface;
    surface.child = mLibrary.xcb_generate_id(mConnection.get());
    const auto cookie = mLibrary.xcb_create_window_checked(
        mConnection.get(), 0, surface.child, host, 0, 0, geometry->width, geometry->height, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, 0, XCB_CW_EVENT_MASK, &kChildEvents);
    const XOwned<xcb_generic_error_t> refused(
        mLibrary.xcb_request_check(mConnection.get(), cookie));
    if (refused)
        return XError::NoWindow;
    mLibrary.xcb_change_window_attributes(mConnection.get(), host, XCB_CW_EVENT_MASK, &kHostEvents);
    mLibrary.xcb_map_window(mConnection.get(), surface.child);
    const auto focus = mConnection.focus();
    surface.hostHasFocus = focus && focus->focus == host;
    mSurfaces[host] = surface;
    return XError::None;
}

void XSurfaces::remove(xcb_window_t host) {
    const auto found = mSurfaces.find(host);
    if (found == mSurfaces.end())
        return;
    constexpr std::uint32_t kNoEvents = XCB_EVENT_MASK_NO_EVENT;
    mGrab.release(found->second.child);
    mLibrary.xcb_change_window_attributes(mConnection.get(), host, XCB_CW_EVENT_MASK, &kNoEvents);
    mLibrary.xcb_destroy_window(mConnection.get(), found->second.child);
    mConnection.flush();
    mSurfaces.erase(found);
    if (mLeaving == host)
        mLeaving = 0;
}

XSurfaces::Found XSurfaces::find(xcb_window_t window) {
    const auto host = mSurfaces.find(window);
    if (host != mSurfaces.end())
        return host;
    auto surface = mSurfaces.begin();
    while (surface != mSurfaces.end() && surface->second.child != window)
        ++surface;
    return surface;
}

XSurfaces::Found XSurfaces::at(WindowApi::Point place) {
    for (auto surface = mSurfaces.begin(); surface != mSurfaces.end(); ++surface) {
        WindowApi::Point inside = place;
        const auto geometry = mConnection.geometry(surface->first);
        if (geometry && mConnection.translate(mConnection.root(), surface->first, inside) &&
            inside.x >= 0 && inside.y >= 0 && inside.x < geometry->width &&
            inside.y < geometry->height)
            return surface;
    }
    return mSurfaces.begin();
}

XSurfaces::Messages XSurfaces::destroyed() const {
    Messages messages;
    for (const auto& surface : mSurfaces)
        messages.push_back({reinterpret_cast<WindowApi::Handle>(std::uintptr_t{surface.first}),
                            wm::kDestroy, 0, 0});
    return messages;
}

void XSurfaces::onResize(const xcb_configure_notify_event_t& event) {
    const auto surface = mSurfaces.find(event.window);
    if (surface == mSurfaces.end())
        return;
    const std::uint32_t values[] = {event.width, event.height, XCB_STACK_MODE_ABOVE};
    mLibrary.xcb_configure_window(
        mConnection.get(), surface->second.child,
        XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT | XCB_CONFIG_WINDOW_STACK_MODE, values);
    mConnection.flush();
}

void XSurfaces::onUnmap(xcb_window_t host) {
    // The server ends the grab of a window that can't be seen.
    const auto surface = mSurfaces.find(host);
    if (surface != mSurfaces.end())
        mGrab.release(surface->second.child);
}

void XSurfaces::setFocus(xcb_window_t host) {
    const auto surface = mSurfaces.find(host);
    if (surface == mSurfaces.end())
        return;
    mLibrary.xcb_set_input_focus(mConnection.get(), XCB_INPUT_FOCUS_PARENT, surface->second.child,
                                 XCB_CURRENT_TIME);
    mConnection.flush();
}

void XSurfaces::setCapture(xcb_window_t host) {
    const auto surface = mSurfaces.find(host);
    if (surface != mSurfaces.end())
        mGrab.capture(surface->second.child);
}

void XSurfaces::releaseCapture() {
    mGrab.releaseCapture();
}

XError XSurfaces::clip(const WindowApi::Rect* rect) {
    if (rect == nullptr) {
        mGrab.releaseClip();
        return XError::None;
    }
    const auto surface = at({(rect->left + rect->right) / 2, (rect->top + rect->bottom) / 2});
    WindowApi::Point origin{0, 0};
    if (surface == mSurfaces.end() ||
        !mConnection.translate(surface->second.child, mConnection.root(), origin))
        return XError::NoWindow;
    return mGrab.clip(surface->second.child, {rect->left - origin.x, rect->top - origin.y,
                                              rect->right - origin.x, rect->bottom - origin.y});
}

void XSurfaces::showCursor(xcb_window_t host, bool shown) {
    const auto surface = mSurfaces.find(host);
    if (surface == mSurfaces.end() || surface->second.cursorHidden != shown)
        return;
    surface->second.cursorHidden = !shown;
    const xcb_cursor_t cursor = shown ? XCB_NONE : emptyCursor();
    mLibrary.xcb_change_window_attributes(mConnection.get(), surface->second.child, XCB_CW_CURSOR,
                                          &cursor);
    mConnection.flush();
}

xcb_cursor_t XSurfaces::emptyCursor() {
    if (mEmptyCursor != 0)
        return mEmptyCursor;
    xcb_connection_t* const x = mConnection.get();
    const xcb_pixmap_t pixmap = mLibrary.xcb_generate_id(x);
    const xcb_gcontext_t brush = mLibrary.xcb_generate_id(x);
    const std::uint32_t clear = 0;
    const xcb_rectangle_t whole{0, 0, 1, 1};
    mEmptyCursor = mLibrary.xcb_generate_id(x);
    mLibrary.xcb_create_pixmap(x, 1, pixmap, mConnection.root(), 1, 1);
    mLibrary.xcb_create_gc(x, brush, pixmap, XCB_GC_FOREGROUND, &clear);
    mLibrary.xcb_poly_fill_rectangle(x, pixmap, brush, 1, &whole);
    mLibrary.xcb_create_cursor(x, mEmptyCursor, pixmap, pixmap, 0, 0, 0, 0, 0, 0, 0, 0);
    mLibrary.xcb_free_gc(x, brush);
    mLibrary.xcb_free_pixmap(x, pixmap);
    return mEmptyCursor;
}

XError XSurfaces::setRawTarget(xcb_window_t host) {
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t bits;
    } mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, 0};

    if (host != 0 && !has(host))
        return XError::NoWindow;
    mRawTarget = host;
    mask.bits = host != 0 ? XCB_INPUT_XI_EVENT_MASK_RAW_MOTION : 0;
    mLibrary.xcb_input_xi_select_events(mConnection.get(), mConnection.root(), 1, &mask.head);
    static_cast<void>(mConnection.focus());
    return XError::None;
}

} // namespace orbelantine
