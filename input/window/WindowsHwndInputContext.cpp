#include "input/window/WindowsHwndInputContext.h"

#include "core/common/log/Log.h"
#include "input/window/WindowRegistry.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <array>
#include <cstddef>
#include <stdexcept>

namespace orbelantine {

namespace {

/// The cursor is kept this far from the surface's edges, in pixels.
constexpr std::int32_t kLockInset = 20;
/// In the client area, because of a move.
constexpr WindowMessage::Long kSetCursorNow = 0x200001;

constexpr std::array<std::uint32_t, 3> kLogicalKeys = {vk::kSpace, vk::kSpace, vk::kLWin};
constexpr std::array<std::uint32_t, 3> kLogicalScanCodes = {57, 29, 219};

/// The contexts with raw input: the system registers a device once for all.
struct RawInputUse {
    std::mutex mutex;
    int contexts = 0;
};

RawInputUse& rawInputUse() {
    static RawInputUse use;
    return use;
}

} // namespace

WindowsHwndInputContext::WindowsHwndInputContext(bool useRawInput, void* window, bool mapImeKeys,
                                                 WindowApi& api)
    : mApi(api)
    , mUseRawInput(useRawInput)
    , mHwnd(window)
    , mMapImeKeys(mapImeKeys) {}

WindowsHwndInputContext::~WindowsHwndInputContext() {
    if (mAttached && mUseRawInput) {
        const std::lock_guard lock(rawInputUse().mutex);
        if (rawInputUse().contexts == 1)
            unregisterInput();
        --rawInputUse().contexts;
    }
    restoreProcedure();
    disconnectAll();
}

boost::shared_ptr<WindowsHwndInputContext>
WindowsHwndInputContext::create(bool useRawInput, void* window, bool mapImeKeys, WindowApi& api) {
    auto context =
        boost::make_shared<WindowsHwndInputContext>(useRawInput, window, mapImeKeys, api);
    context->attach();
    return context;
}

void WindowsHwndInputContext::attach() {
    if (mHwnd != nullptr)
        initWinProc();
    mAttached = true;
    if (mUseRawInput) {
        const std::lock_guard lock(rawInputUse().mutex);
        registerInput();
        ++rawInputUse().contexts;
    }
}

void WindowsHwndInputContext::initWinProc() {
    const std::int32_t style = mApi.getExtendedStyle(mHwnd);
    // A mirrored window would flip the coordinates.
    if ((style & WindowApi::kExtendedStyleRightToLeft) != 0)
        mApi.setExtendedStyle(mHwnd, style & ~WindowApi::kExtendedStyleRightToLeft);
    const WindowApi::Procedure previous = mApi.getProcedure(mHwnd);
    if (!WindowRegistry::instance().add(mApi, mHwnd, {weak_from_this(), previous}))
        throw std::runtime_error("The window is an input surface already: dispose of the context "
                                 "that it has before it gets another.");
    mWindowProc = previous;
    mApi.setUserData(mHwnd, this);
    const WindowApi::Procedure current = mApi.messageProcedure();
    if (const WindowApi::Error error = mApi.setProcedure(mHwnd, current)) {
        mWindowProc = 0;
        WindowRegistry::instance().remove(mApi, mHwnd);
        throw std::runtime_error("The window can't be an input surface: " + mApi.errorText(error));
    }
    ORB_LOG(kLogDebug, "%s() Changed wndproc mHwnd=0x%p, prev=0x%p, current=0x%p", mHwnd,
            reinterpret_cast<void*>(previous), reinterpret_cast<void*>(current));
}

void WindowsHwndInputContext::registerInput() {
    if (const WindowApi::Error error =
            mApi.registerRawInputDevice({WindowApi::kUsagePageGeneric, WindowApi::kUsageMouse,
                                         WindowApi::kRawInputSink, mHwnd}))
        ORB_LOG(kLogError, "%s() RegisterRawInputDevices() failed. Error: %d",
                static_cast<int>(error));
}

void WindowsHwndInputContext::unregisterInput() {
    if (const WindowApi::Error error =
            mApi.registerRawInputDevice({WindowApi::kUsagePageGeneric, WindowApi::kUsageMouse,
                                         WindowApi::kRawInputRemove, nullptr}))
        ORB_LOG(kLogError, "%s() RegisterRawInputDevices() failed. Error: %d",
                static_cast<int>(error));
}

void WindowsHwndInputContext::restoreProcedure() {
    if (mHwnd == nullptr || mWindowProc == 0)
        return;
    if (const WindowApi::Error error = mApi.setProcedure(mHwnd, mWindowProc))
        ORB_LOG(kLogDebug, "%s() %s", mApi.errorText(error).c_str());
    mWindowProc = 0;
    WindowRegistry::instance().remove(mApi, mHwnd);
}

void WindowsHwndInputContext::disconnectAll() {
    const auto disconnect = [](auto&... signals) { (signals.disconnect_all_slots(), ...); };
    disconnect(onKeyDown, onKeyUp, onMouseClickDown, onMouseClickUp, onAbsoluteMouseMove,
               onRelativeMouseWheel, onRelativeMouseMove, onPointerDown, onPointerUp,
               onPointerUpdate, onInputSurfaceLostFocus, onInputSurfaceDestroyed,
               onLogicalDimensionsChanged, onRotationChanged, onTextComposed, onPreKeyDown,
               onPreKeyUp, onMessage);
}

std::uint16_t WindowsHwndInputContext::convertVKCodeToUnicode(std::uint32_t vk) {
    WindowApi::KeyboardState state{};
    static_cast<void>(mApi.getKeyboardState(state));
    const std::uint32_t scanCode = mApi.mapVirtualKey(vk, WindowApi::kVirtualKeyToScanCode);
    WindowApi::Text text{};
    const std::int32_t length = mApi.toUnicode(vk, scanCode, state, text);
    ORB_LOG(kLogDebug, "%s() ToUnicode(%d) ret=%d", static_cast<int>(vk), length);
    return length == 1 ? text[0] : 0;
}

std::uint32_t WindowsHwndInputContext::mapVK(std::uint32_t index) {
    return index < kLogicalKeys.size() ? kLogicalKeys[index] : 0;
}

std::uint32_t WindowsHwndInputContext::mapScan(std::uint32_t index) {
    return index < kLogicalScanCodes.size() ? kLogicalScanCodes[index] : 0;
}

void WindowsHwndInputContext::lockSystemMouse() {
    Rect client{};
    if (!mApi.getClientRect(mHwnd, client))
        return;
    Point topLeft{0, 0};
    Point bottomRight{client.right - kLockInset, client.bottom - kLockInset};
    mApi.clientToScreen(mHwnd, topLeft);
    mApi.clientToScreen(mHwnd, bottomRight);
    const Rect clip{topLeft.x + kLockInset, topLeft.y + kLockInset, bottomRight.x, bottomRight.y};
    if (const WindowApi::Error error = mApi.clipCursor(&clip))
        ORB_LOG(kLogError, "%s() Unable to clip the cursor. Error: %d", static_cast<int>(error));
    mCursorHidden = true;
    mApi.postMessage(
        {mHwnd, wm::kSetCursor, reinterpret_cast<WindowMessage::Word>(mHwnd), kSetCursorNow});
}

void WindowsHwndInputContext::unlockSystemMouse(std::int32_t x, std::int32_t y) {
    static_cast<void>(mApi.clipCursor(nullptr));
    if (x >= 0 && y >= 0)
        mApi.setCursorPosition(x, y);
    mCursorHidden = false;
}

std::int32_t WindowsHwndInputContext::getSystemMouseSpeed() {
    std::int32_t speed = 0;
    return mApi.getMouseSpeed(speed) ? speed : DEFAULT_MOUSE_SPEED;
}

bool WindowsHwndInputContext::screenToInputSurface(Point& point) {
    return mApi.screenToClient(mHwnd, point);
}

bool WindowsHwndInputContext::inputSurfaceToScreen(Point& point) {
    return mApi.clientToScreen(mHwnd, point);
}

bool WindowsHwndInputContext::getInputSurfaceRectWithinScreen(Rect& rect) {
    return mApi.getClientRect(mHwnd, rect);
}

void WindowsHwndInputContext::setCaptureMouseExclusively() {
    mApi.setCapture(mHwnd);
}

void WindowsHwndInputContext::releaseCaptureMouseExclusively() {
    mApi.releaseCapture();
}

} // namespace orbelantine
