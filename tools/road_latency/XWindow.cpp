#include "tools/road_latency/XWindow.h"

#include <xcb/xtest.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace orbelantine::latency {

namespace {

constexpr xcb_keycode_t kKeyA = 38;
constexpr std::uint16_t kSide = 200;

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

const xcb_screen_t& screenOf(xcb_connection_t* connection) {
    return *xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
}

} // namespace

XWindow::XWindow(Listening listening)
    : mConnection(xcb_connect(nullptr, nullptr)) {
    xcb_connection_t* const connection = mConnection.get();
    if (xcb_connection_has_error(connection) != 0)
        throw std::runtime_error("no X display: run it through tools/own_display.py");
    const xcb_screen_t& screen = screenOf(connection);
    mWindow = xcb_generate_id(connection);
    const std::uint32_t keys = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE;
    const std::uint32_t events[] = {listening == Listening::Yes ? keys : 0};
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, mWindow, screen.root, 0, 0, kSide, kSide, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual, XCB_CW_EVENT_MASK, events);
    xcb_map_window(connection, mWindow);
    takeFocus();
}

void XWindow::takeFocus() {
    xcb_connection_t* const connection = mConnection.get();
    xcb_set_input_focus(connection, XCB_INPUT_FOCUS_PARENT, mWindow, XCB_CURRENT_TIME);
    const std::unique_ptr<xcb_get_input_focus_reply_t, Free> done(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

void XWindow::pressKey() {
    mDown = !mDown;
    xcb_connection_t* const connection = mConnection.get();
    xcb_test_fake_input(connection, mDown ? XCB_KEY_PRESS : XCB_KEY_RELEASE, kKeyA,
                        XCB_CURRENT_TIME, screenOf(connection).root, 0, 0, 0);
    xcb_flush(connection);
}

bool XWindow::awaitKey() {
    for (;;) {
        const std::unique_ptr<xcb_generic_event_t, Free> event(
            xcb_wait_for_event(mConnection.get()));
        if (!event || (event->response_type & 0x7F) == XCB_CLIENT_MESSAGE)
            return false;
        if ((event->response_type & 0x7F) == XCB_KEY_PRESS ||
            (event->response_type & 0x7F) == XCB_KEY_RELEASE)
            return true;
    }
}

void XWindow::end() {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 8;
    message.window = mWindow;
    xcb_send_event(mConnection.get(), 0, mWindow, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(mConnection.get());
}

} // namespace orbelantine::latency
