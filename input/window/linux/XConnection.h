#pragma once

#include "input/window/WindowApi.h"
#include "input/window/linux/XLibrary.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace orbelantine {

/// What an operation on X can fail by, as WindowApi::Error; from kNoLibrary on the index of the
/// library's file is added.
enum class XError : std::uint32_t {
    None,
    NoDisplayName,
    NoDisplay,
    NoExtension,
    NoWindow,
    NoThread,
    Grabbed,
    NotSupported,
    NoLibrary = 16,
};

[[nodiscard]] std::string xErrorText(WindowApi::Error error);

struct XFree {
    void operator()(void* memory) const { std::free(memory); }
};

template <class Reply>
using XOwned = std::unique_ptr<Reply, XFree>;

/// A connection to the X server that DISPLAY names. Any thread may call; who gets an answer may
/// have read events for the one who polls for them. Once the server is gone, nothing answers.
class XConnection {
  public:
    [[nodiscard]] static XError open(std::shared_ptr<XConnection>& connection);
    ~XConnection();
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    [[nodiscard]] const XLibrary& library() const { return mLibrary; }

    [[nodiscard]] xcb_connection_t* get() const { return mConnection; }

    [[nodiscard]] xcb_window_t root() const { return mRoot; }

    [[nodiscard]] bool isBroken() const;

    void flush() const { mLibrary.xcb_flush(mConnection); }

    /// The opcode of an extension, 0 without it.
    [[nodiscard]] std::uint8_t extension(std::string_view name) const;
    /// Null if there is no such window.
    [[nodiscard]] XOwned<xcb_get_geometry_reply_t> geometry(xcb_window_t window) const;
    /// Null after the server's end. Every event so far is in the queue by then.
    [[nodiscard]] XOwned<xcb_get_input_focus_reply_t> focus() const;
    [[nodiscard]] bool translate(xcb_window_t from, xcb_window_t to, WindowApi::Point& point) const;

    template <class Cookie, class Reply>
    [[nodiscard]] XOwned<Reply>
    answer(Reply* (*fetch)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie) const {
        xcb_generic_error_t* error = nullptr;
        XOwned<Reply> reply(fetch(mConnection, cookie, &error));
        const XOwned<xcb_generic_error_t> refused(error);
        return reply;
    }

  private:
    XConnection(const XLibrary& library, xcb_connection_t* connection, int screen);

    const XLibrary& mLibrary;
    xcb_connection_t* mConnection;
    xcb_window_t mRoot = 0;
};

} // namespace orbelantine
