#include "input/window/linux/XConnection.h"

#include <mutex>
#include <string_view>

namespace orbelantine {

namespace {

constexpr auto kFirstMissing = static_cast<WindowApi::Error>(XError::NoLibrary);

const char* xDisplayName() {
    const char* const name = std::getenv("DISPLAY");
    return name == nullptr ? "" : name;
}

/// Looked for again as long as it is incomplete.
const XLibrary* loadedXLibrary(XError& error) {
    static std::mutex mutex;
    static XLibrary library;
    static bool complete = false;
    const std::lock_guard lock(mutex);
    if (!complete) {
        const auto missing = library.load();
        complete = !missing;
        if (missing)
            error = static_cast<XError>(kFirstMissing + *missing);
    }
    return complete ? &library : nullptr;
}

} // namespace

std::string xErrorText(WindowApi::Error error) {
    if (error >= kFirstMissing && error - kFirstMissing < XLibrary::kFiles.size())
        return std::string("The machine lacks ") + XLibrary::kFiles[error - kFirstMissing] + ".";
    switch (static_cast<XError>(error)) {
    case XError::NoDisplayName:
        return "There is no X display: DISPLAY is not set.";
    case XError::NoDisplay:
        return std::string("The X display ") + xDisplayName() + " can't be opened.";
    case XError::NoExtension:
        return "The X server lacks XInput 2 or XKB.";
    case XError::NoWindow:
        return "There is no such window.";
    case XError::NoThread:
        return "No thread can be started.";
    case XError::Grabbed:
        return "Another program has grabbed the pointer.";
    case XError::NotSupported:
        return "X has no such operation.";
    default:
        return "Error " + std::to_string(error) + " of X.";
    }
}

XError XConnection::open(std::shared_ptr<XConnection>& connection) {
    XError error = XError::None;
    const XLibrary* const library = loadedXLibrary(error);
    if (library == nullptr)
        return error;
    if (*xDisplayName() == '\0')
        return XError::NoDisplayName;
    int screen = 0;
    xcb_connection_t* const opened = library->xcb_connect(nullptr, &screen);
    connection.reset(new XConnection(*library, opened, screen));
    if (!connection->isBroken())
        return XError::None;
    connection.reset();
    return XError::NoDisplay;
}

XConnection::XConnection(const XLibrary& library, xcb_connection_t* connection, int screen)
    : mLibrary(library)
    , mConnection(connection) {
    if (isBroken())
        return;
    auto screens = mLibrary.xcb_setup_roots_iterator(mLibrary.xcb_get_setup(mConnection));
    for (; screen > 0 && screens.rem > 1; --screen)
        mLibrary.xcb_screen_next(&screens);
    mRoot = screens.data->root;
}

XConnection::~XConnection() {
    mLibrary.xcb_disconnect(mConnection);
}

bool XConnection::isBroken() const {
    return mLibrary.xcb_connection_has_error(mConnection) != 0;
}

std::uint8_t XConnection::extension(std::string_view name) const {
    const auto reply =
        answer(mLibrary.xcb_query_extension_reply,
               mLibrary.xcb_query_extension(mConnection, static_cast<std::uint16_t>(name.size()),
                                            name.data()));
    return reply && reply->present != 0 ? reply->major_opcode : 0;
}

XOwned<xcb_get_geometry_reply_t> XConnection::geometry(xcb_window_t window) const {
    return answer(mLibrary.xcb_get_geometry_reply, mLibrary.xcb_get_geometry(mConnection, window));
}

XOwned<xcb_get_input_focus_reply_t> XConnection::focus() const {
    return answer(mLibrary.xcb_get_input_focus_reply, mLibrary.xcb_get_input_focus(mConnection));
}

bool XConnection::translate(xcb_window_t from, xcb_window_t to, WindowApi::Point& point) const {
    const auto reply = answer(mLibrary.xcb_translate_coordinates_reply,
                              mLibrary.xcb_translate_coordinates(
                                  mConnection, from, to, static_cast<std::int16_t>(point.x),
                                  static_cast<std::int16_t>(point.y)));
    if (!reply)
        return false;
    point = {reply->dst_x, reply->dst_y};
    return true;
}

} // namespace orbelantine
