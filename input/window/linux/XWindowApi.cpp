#include "input/window/linux/XWindowApi.h"

#include "core/common/log/Log.h"

namespace orbelantine {

namespace {

/// Whoever has the messages of a host's window is no business of ours.
constexpr WindowApi::Procedure kHostProcedure = 1;
constexpr WindowApi::Procedure kMessageProcedure = 2;

WindowApi::Error numberOf(XError error) {
    return static_cast<WindowApi::Error>(error);
}

} // namespace

WindowApi& WindowApi::system() {
    static auto& api = *new XWindowApi;
    return api;
}

XWindowApi::Thread XWindowApi::thread() {
    const std::lock_guard lock(mMutex);
    return mThread && !mThread->hasEnded() ? mThread : nullptr;
}

template <class Value, class Action>
Value XWindowApi::ofSurfaces(Value otherwise, Action&& action) {
    const Thread current = thread();
    return current ? current->with(action) : otherwise;
}

std::int32_t XWindowApi::getExtendedStyle(Handle /*window*/) {
    return 0;
}

void XWindowApi::setExtendedStyle(Handle /*window*/, std::int32_t /*style*/) {}

void XWindowApi::setUserData(Handle /*window*/, void* /*data*/) {}

WindowApi::Procedure XWindowApi::messageProcedure() {
    return kMessageProcedure;
}

WindowApi::Procedure XWindowApi::getProcedure(Handle window) {
    if (const Thread current = thread()) {
        const auto geometry = current->connection().geometry(xWindowOf(window));
        current->wake();
        return geometry ? kHostProcedure : 0;
    }
    std::shared_ptr<XConnection> connection;
    const bool exists = XConnection::open(connection) == XError::None &&
                        connection->geometry(xWindowOf(window)) != nullptr;
    return exists ? kHostProcedure : 0;
}

WindowApi::Error XWindowApi::setProcedure(Handle window, Procedure procedure) {
    const std::lock_guard lock(mMutex);
    if (procedure != kMessageProcedure) {
        giveBack(xWindowOf(window));
        return numberOf(XError::None);
    }
    const Error error = numberOf(install(xWindowOf(window)));
    if (error != 0)
        ORB_LOG(kLogError, "%s() %s", errorText(error).c_str());
    return error;
}

XError XWindowApi::install(xcb_window_t window) {
    if (!mThread || mThread->hasEnded())
        if (const XError error = XMessageThread::start(*this, mThread); error != XError::None)
            return error;
    const XError error = mThread->with([&](XSurfaces& surfaces) { return surfaces.add(window); });
    if (error != XError::None)
        giveBack(window);
    return error;
}

void XWindowApi::giveBack(xcb_window_t window) {
    const auto removed = [&](XSurfaces& surfaces) {
        surfaces.remove(window);
        return surfaces.isEmpty();
    };
    if (!mThread || !mThread->with(removed))
        return;
    mThread->end();
    mThread = nullptr;
}

WindowApi::Result XWindowApi::callProcedure(Procedure /*procedure*/,
                                            const WindowMessage& /*message*/) {
    return 0;
}

WindowApi::Result XWindowApi::callDefaultProcedure(const WindowMessage& message) {
    if (message.message == wm::kSetCursor)
        if (const Thread current = thread())
            current->with(
                [&](XSurfaces& surfaces) { surfaces.showCursor(xWindowOf(message.window), true); });
    return 0;
}

void XWindowApi::postMessage(const WindowMessage& message) {
    if (const Thread current = thread())
        current->post(message);
}

void XWindowApi::sendMessage(const WindowMessage& message) {
    if (const Thread current = thread())
        current->send(message);
}

void XWindowApi::runBetweenMessages(Handle /*window*/, const std::function<void()>& task) {
    if (const Thread current = thread())
        current->call(task);
    else
        task();
}

WindowApi::Long XWindowApi::getMessageExtraInfo() {
    return 0;
}

void XWindowApi::setFocus(Handle window) {
    if (const Thread current = thread())
        current->with([&](XSurfaces& surfaces) { surfaces.setFocus(xWindowOf(window)); });
}

void XWindowApi::setCapture(Handle window) {
    if (const Thread current = thread())
        current->with([&](XSurfaces& surfaces) { surfaces.setCapture(xWindowOf(window)); });
}

void XWindowApi::releaseCapture() {
    if (const Thread current = thread())
        current->with([](XSurfaces& surfaces) { surfaces.releaseCapture(); });
}

WindowApi::Error XWindowApi::registerRawInputDevice(const RawInputDevice& device) {
    const bool removal = (device.flags & kRawInputRemove) != 0;
    const xcb_window_t target = removal ? 0 : xWindowOf(device.target);
    if (!removal && target == 0)
        return numberOf(XError::NoWindow);
    return numberOf(ofSurfaces(removal ? XError::None : XError::NoWindow,
                               [&](XSurfaces& surfaces) { return surfaces.setRawTarget(target); }));
}

bool XWindowApi::getRawInput(Long lParam, RawInput& input) {
    const auto packed = static_cast<std::uint64_t>(lParam);
    input = {kRawTypeMouse, 0, static_cast<std::int32_t>(packed >> 32),
             static_cast<std::int32_t>(packed & 0xFFFFFFFF)};
    return true;
}

WindowApi::Error XWindowApi::getPointerType(std::uint32_t /*id*/, std::uint32_t& /*type*/) {
    return numberOf(XError::NotSupported);
}

bool XWindowApi::getKeyboardState(KeyboardState& state) {
    return ofSurfaces(false, [&](XSurfaces& surfaces) {
        state = surfaces.keyboard().keys();
        return true;
    });
}

std::uint32_t XWindowApi::mapVirtualKey(std::uint32_t code, std::uint32_t kind) {
    return ofSurfaces(
        0U, [&](XSurfaces& surfaces) { return surfaces.keyboard().mapVirtualKey(code, kind); });
}

std::int32_t XWindowApi::toUnicode(std::uint32_t vk, std::uint32_t scanCode,
                                   const KeyboardState& state, Text& text) {
    return ofSurfaces(0, [&](XSurfaces& surfaces) {
        return surfaces.keyboard().toUnicode(vk, scanCode, state, text);
    });
}

bool XWindowApi::getMouseSpeed(std::int32_t& /*speed*/) {
    return false;
}

bool XWindowApi::translate(Handle window, Point& point, bool toScreen) {
    const Thread current = thread();
    if (!current)
        return false;
    const XConnection& x = current->connection();
    const xcb_window_t ours = xWindowOf(window);
    const bool done =
        toScreen ? x.translate(ours, x.root(), point) : x.translate(x.root(), ours, point);
    current->wake();
    return done;
}

bool XWindowApi::screenToClient(Handle window, Point& point) {
    return translate(window, point, false);
}

bool XWindowApi::clientToScreen(Handle window, Point& point) {
    return translate(window, point, true);
}

bool XWindowApi::getClientRect(Handle window, Rect& rect) {
    const Thread current = thread();
    const auto geometry = current ? current->connection().geometry(xWindowOf(window)) : nullptr;
    if (!geometry)
        return false;
    current->wake();
    rect = {0, 0, geometry->width, geometry->height};
    return true;
}

WindowApi::Error XWindowApi::clipCursor(const Rect* rect) {
    return numberOf(ofSurfaces(rect == nullptr ? XError::None : XError::NoWindow,
                               [&](XSurfaces& surfaces) { return surfaces.clip(rect); }));
}

void XWindowApi::setCursorPosition(std::int32_t x, std::int32_t y) {
    const Thread current = thread();
    if (!current)
        return;
    const XConnection& connection = current->connection();
    connection.library().xcb_warp_pointer(connection.get(), XCB_NONE, connection.root(), 0, 0, 0, 0,
                                          static_cast<std::int16_t>(x),
                                          static_cast<std::int16_t>(y));
    connection.flush();
}

void XWindowApi::hideCursor() {
    if (const Thread current = thread())
        current->with([&](XSurfaces& surfaces) {
            surfaces.showCursor(xWindowOf(current->windowInHand()), false);
        });
}

std::string XWindowApi::errorText(Error error) {
    return xErrorText(error);
}

} // namespace orbelantine
