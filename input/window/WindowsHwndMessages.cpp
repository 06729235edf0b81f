#include "core/common/log/Log.h"
#include "input/window/WindowsHwndInputContext.h"

#include <algorithm>
#include <atomic>
#include <iterator>

namespace orbelantine {

namespace {

constexpr std::int32_t kMostWheel = 3;
constexpr WindowMessage::Result kCursorIsSet = 1;

/// Where the cursor was seen last, over whichever surface.
std::atomic<std::int32_t> lastSeenX = 0;
std::atomic<std::int32_t> lastSeenY = 0;

bool isSeen(std::int32_t x, std::int32_t y) {
    if (lastSeenX.load(std::memory_order_relaxed) == x &&
        lastSeenY.load(std::memory_order_relaxed) == y)
        return true;
    lastSeenX.store(x, std::memory_order_relaxed);
    lastSeenY.store(y, std::memory_order_relaxed);
    return false;
}

IInputContext::ePointerType pointerTypeOf(std::uint32_t type) {
    switch (type) {
    case WindowApi::kPointerTypeTouch:
        return IInputContext::PointerTouch;
    case WindowApi::kPointerTypePen:
        return IInputContext::PointerPen;
    default:
        return IInputContext::PointerOther;
    }
}

} // namespace

/// What is done with each message; those that aren't listed are passed on.
struct WindowMessageTable {
    using Context = WindowsHwndInputContext;
    using Handler = WindowMessage::Result (Context::*)(const WindowMessage&);

    struct Row {
        std::uint32_t message;
        Handler handler;
    };

    static constexpr Row kRows[] = {
        {wm::kMouseMove, &Context::onMouseMove},
        {wm::kSetCursor, &Context::onSetCursor},
        {wm::kInput, &Context::onRawInput},
        {wm::kKeyDown, &Context::onWndKeyDown},
        {wm::kKeyUp, &Context::onWndKeyUp},
        {wm::kSysKeyDown, &Context::onSystemKeyDown},
        {wm::kSysKeyUp, &Context::onSystemKeyUp},
        {wm::kLButtonDown, &Context::onWndLButtonDown},
        {wm::kLButtonUp, &Context::onLButtonUp},
        {wm::kLButtonDblClk, &Context::onLButtonDoubleClick},
        {wm::kRButtonDown, &Context::onRButtonDown},
        {wm::kRButtonUp, &Context::onRButtonUp},
        {wm::kMouseWheel, &Context::onWheel},
        {wm::kMouseHWheel, &Context::onHorizontalWheel},
        {wm::kPointerUpdate, &Context::onPointer<&Context::onPointerUpdate, false>},
        {wm::kPointerDown, &Context::onPointer<&Context::onPointerDown, true>},
        {wm::kPointerUp, &Context::onPointer<&Context::onPointerUp, true>},
        {wm::kSetFocus, &Context::passOnWithoutLParam},
        {wm::kKillFocus, &Context::onKillFocus},
        {wm::kDestroy, &Context::onWndDestroy},
    };

    [[nodiscard]] static Handler find(std::uint32_t message) {
        const auto* const row = std::find_if(std::begin(kRows), std::end(kRows),
                                             [&](const Row& r) { return r.message == message; });
        return row == std::end(kRows) ? &Context::passOn : row->handler;
    }
};

WindowMessage::Result WindowsHwndInputContext::handle(const WindowMessage& message) {
    onMessage(message.window, message.message, message.wParam, message.lParam);
    return (this->*WindowMessageTable::find(message.message))(message);
}

WindowMessage::Result WindowsHwndInputContext::passOn(const WindowMessage& message) {
    return mWindowProc != 0 ? mApi.callProcedure(mWindowProc, message) : 0;
}

WindowMessage::Result WindowsHwndInputContext::passOnWithoutLParam(const WindowMessage& message) {
    return passOn({message.window, message.message, message.wParam, 0});
}

WindowMessage::Result WindowsHwndInputContext::onWndDestroy(const WindowMessage& /*message*/) {
    ORB_LOG(kLogDebug, "%s() mHwnd=0x%p, mWindowProc=0x%p", mHwnd,
            reinterpret_cast<void*>(mWindowProc));
    onInputSurfaceDestroyed();
    restoreProcedure();
    return 0;
}

WindowMessage::Result WindowsHwndInputContext::onKillFocus(const WindowMessage& message) {
    onInputSurfaceLostFocus();
    return passOnWithoutLParam(message);
}

WindowMessage::Result WindowsHwndInputContext::onSetCursor(const WindowMessage& message) {
    if (lowWord(static_cast<WindowMessage::Word>(message.lParam)) != kHitClient || !mCursorHidden)
        return mApi.callDefaultProcedure(message);
    mApi.hideCursor();
    return kCursorIsSet;
}

WindowMessage::Result WindowsHwndInputContext::onRawInput(const WindowMessage& message) {
    WindowApi::RawInput input{};
    if (mApi.getRawInput(message.lParam, input) && input.type == WindowApi::kRawTypeMouse &&
        (input.flags & WindowApi::kRawMoveAbsolute) == 0)
        onRelativeMouseMove(input.lastX, input.lastY);
    return mApi.callDefaultProcedure(message);
}

WindowMessage::Result WindowsHwndInputContext::onMouseMove(const WindowMessage& message) {
    const std::int32_t x = xOf(message.lParam);
    const std::int32_t y = yOf(message.lParam);
    if (mApi.getMessageExtraInfo() == 0 && !isSeen(x, y))
        onAbsoluteMouseMove(x, y);
    return passOn(message);
}

void WindowsHwndInputContext::takeFocus(const char* function) {
    mApi.setFocus(mHwnd);
    ORB_LOG_TEXT(kLogDebug, "%s() SetFocus on hwnd", function);
}

WindowMessage::Result WindowsHwndInputContext::onWndLButtonDown(const WindowMessage& message) {
    mSwallowLButton = false;
    takeFocus(ORB_FUNCTION_NAME);
    if (mApi.getMessageExtraInfo() == 0)
        onMouseClickDown(MouseButtonLeft, xOf(message.lParam), yOf(message.lParam));
    return 0;
}

WindowMessage::Result WindowsHwndInputContext::onLButtonUp(const WindowMessage& message) {
    if (mSwallowLButton)
        mSwallowLButton = false;
    else if (mApi.getMessageExtraInfo() == 0)
        onMouseClickUp(MouseButtonLeft, xOf(message.lParam), yOf(message.lParam));
    return 0;
}

WindowMessage::Result
WindowsHwndInputContext::onLButtonDoubleClick(const WindowMessage& /*message*/) {
    mSwallowLButton = true;
    return 0;
}

WindowMessage::Result WindowsHwndInputContext::onRButtonDown(const WindowMessage& message) {
    takeFocus(ORB_FUNCTION_NAME);
    onMouseClickDown(MouseButtonRight, xOf(message.lParam), yOf(message.lParam));
    return 0;
}

WindowMessage::Result WindowsHwndInputContext::onRButtonUp(const WindowMessage& message) {
    onMouseClickUp(MouseButtonRight, xOf(message.lParam), yOf(message.lParam));
    return 0;
}

WindowMessage::Result WindowsHwndInputContext::onWheel(const WindowMessage& message) {
    const std::int32_t turned = static_cast<std::int16_t>(highWord(message.wParam));
    onRelativeMouseWheel(std::clamp(turned, -kMostWheel, kMostWheel), xOf(message.lParam),
                         yOf(message.lParam));
    return 0;
}

WindowMessage::Result WindowsHwndInputContext::onHorizontalWheel(const WindowMessage& /*message*/) {
    ORB_LOG(kLogDebug, "%s()");
    return 0;
}

template <auto PointerSignal, bool PassedOn>
WindowMessage::Result WindowsHwndInputContext::onPointer(const WindowMessage& message) {
    const std::uint32_t id = lowWord(message.wParam);
    std::uint32_t type = 0;
    if (const WindowApi::Error error = mApi.getPointerType(id, type))
        ORB_LOG(kLogError, "%s: Unable to get pointer type. Error: %d", static_cast<int>(error));
    else
        (this->*PointerSignal)(pointerTypeOf(type), id, xOf(message.lParam), yOf(message.lParam),
                               (message.wParam & kPointerPrimary) != 0);
    return PassedOn ? passOn(message) : 0;
}

} // namespace orbelantine
