#pragma once

#include "input/context/IInputContext.h"
#include "input/window/WindowMessages.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>

namespace orbelantine {

/// The calls to the system's windows, cursor and keyboard, one operation for each, in Win32's
/// shape. On Linux a window is an X11 window, whose events come as the messages that Windows would
/// send. Any thread may call. An Error is the system's number, 0 for success; outputs are
/// meaningful after a success only.
class WindowApi {
  public:
    using Handle = WindowMessage::Handle;
    using Word = WindowMessage::Word;
    using Long = WindowMessage::Long;
    using Result = WindowMessage::Result;
    using Error = std::uint32_t;
    /// What takes a window's messages, as a number of the system's; 0 is none.
    using Procedure = std::intptr_t;
    using Point = IInputContext::Point;
    using Rect = IInputContext::Rect;
    /// The state of each virtual key: bit 7 for held, bit 0 for toggled.
    using KeyboardState = std::array<std::uint8_t, 256>;
    using Text = std::array<char16_t, 4>;

    static constexpr std::int32_t kExtendedStyleRightToLeft = 0x400000;

    /// Of RAWINPUTDEVICE.
    struct RawInputDevice {
        std::uint16_t usagePage;
        std::uint16_t usage;
        std::uint32_t flags;
        Handle target;
    };

    static constexpr std::uint16_t kUsagePageGeneric = 1;
    static constexpr std::uint16_t kUsageMouse = 2;
    static constexpr std::uint32_t kRawInputRemove = 1;
    static constexpr std::uint32_t kRawInputSink = 256;

    /// Of RAWINPUT, what a mouse tells.
    struct RawInput {
        std::uint32_t type;
        std::uint16_t flags;
        std::int32_t lastX;
        std::int32_t lastY;
    };

    static constexpr std::uint32_t kRawTypeMouse = 0;
    static constexpr std::uint16_t kRawMoveAbsolute = 1;

    /// What mapVirtualKey is asked for.
    static constexpr std::uint32_t kVirtualKeyToScanCode = 0;
    static constexpr std::uint32_t kScanCodeToVirtualKey = 1;

    static constexpr std::uint32_t kPointerTypeTouch = 2;
    static constexpr std::uint32_t kPointerTypePen = 3;

    virtual ~WindowApi() = default;

    [[nodiscard]] virtual std::int32_t getExtendedStyle(Handle window) = 0;
    virtual void setExtendedStyle(Handle window, std::int32_t style) = 0;
    virtual void setUserData(Handle window, void* data) = 0;
    /// The procedure that hands a window's messages to handleWindowMessage, on the window's thread.
    [[nodiscard]] virtual Procedure messageProcedure() = 0;
    /// 0 if there is no such window.
    [[nodiscard]] virtual Procedure getProcedure(Handle window) = 0;
    [[nodiscard]] virtual Error setProcedure(Handle window, Procedure procedure) = 0;
    virtual Result callProcedure(Procedure procedure, const WindowMessage& message) = 0;
    virtual Result callDefaultProcedure(const WindowMessage& message) = 0;
    virtual void postMessage(const WindowMessage& message) = 0;
    /// Returns once the window's thread has handled it.
    virtual void sendMessage(const WindowMessage& message) = 0;
    /// Runs `task` where the window's messages are handled, between two of them, and returns when
    /// it has run. On Windows that is the caller's thread, which is to be the window's.
    virtual void runBetweenMessages(Handle window, const std::function<void()>& task) = 0;
    /// What the sender of the message in hand added to it; not 0 for a mouse message that stands
    /// for a pen or touch.
    [[nodiscard]] virtual Long getMessageExtraInfo() = 0;

    virtual void setFocus(Handle window) = 0;
    virtual void setCapture(Handle window) = 0;
    virtual void releaseCapture() = 0;

    [[nodiscard]] virtual Error registerRawInputDevice(const RawInputDevice& device) = 0;
    /// Of the WM_INPUT in hand.
    [[nodiscard]] virtual bool getRawInput(Long lParam, RawInput& input) = 0;
    [[nodiscard]] virtual Error getPointerType(std::uint32_t id, std::uint32_t& type) = 0;

    [[nodiscard]] virtual bool getKeyboardState(KeyboardState& state) = 0;
    [[nodiscard]] virtual std::uint32_t mapVirtualKey(std::uint32_t code, std::uint32_t kind) = 0;
    /// The number of units, negative for a dead key.
    [[nodiscard]] virtual std::int32_t toUnicode(std::uint32_t vk, std::uint32_t scanCode,
                                                 const KeyboardState& state, Text& text) = 0;

    [[nodiscard]] virtual bool getMouseSpeed(std::int32_t& speed) = 0;
    virtual bool screenToClient(Handle window, Point& point) = 0;
    virtual bool clientToScreen(Handle window, Point& point) = 0;
    /// From (0, 0) to the window's size.
    [[nodiscard]] virtual bool getClientRect(Handle window, Rect& rect) = 0;
    /// Null frees the cursor.
    [[nodiscard]] virtual Error clipCursor(const Rect* rect) = 0;
    virtual void setCursorPosition(std::int32_t x, std::int32_t y) = 0;
    /// Over the window that has the cursor, until the next callDefaultProcedure with WM_SETCURSOR.
    virtual void hideCursor() = 0;

    /// A sentence for an Error.
    [[nodiscard]] virtual std::string errorText(Error error) = 0;

    /// The system's own.
    [[nodiscard]] static WindowApi& system();
};

/// Where messageProcedure leads: the window's context handles the message, if there is one.
WindowApi::Result handleWindowMessage(WindowApi& api, const WindowMessage& message);

} // namespace orbelantine
