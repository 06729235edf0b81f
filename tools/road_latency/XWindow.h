#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>

namespace orbelantine::latency {

/// A window of a client of its own, and a hand on the keyboard.
class XWindow {
  public:
    enum class Listening { No, Yes };

    /// With the focus. Throws std::runtime_error without a display.
    explicit XWindow(Listening listening);

    /// The keys go here from now on.
    void takeFocus();
    /// The key "a", down and up in turn.
    void pressKey();
    /// Until a key event, or the window's end: false.
    [[nodiscard]] bool awaitKey();
    /// Any thread: lets awaitKey go.
    void end();

    [[nodiscard]] void* handle() const {
        return reinterpret_cast<void*>(static_cast<std::uintptr_t>(mWindow));
    }

  private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    std::unique_ptr<xcb_connection_t, Disconnect> mConnection;
    xcb_window_t mWindow = 0;
    bool mDown = false;
};

} // namespace orbelantine::latency
