#include "input/window/WindowApi.h"

#include "core/common/errors/SystemText.h"

#include <windows.h>

namespace orbelantine {

namespace {

static_assert(sizeof(RAWINPUTHEADER) == 24);
static_assert(sizeof(RAWINPUT) == 48);
static_assert(WindowApi::kRawInputRemove == RIDEV_REMOVE);
static_assert(WindowApi::kRawInputSink == RIDEV_INPUTSINK);
static_assert(WindowApi::kRawTypeMouse == RIM_TYPEMOUSE);
static_assert(WindowApi::kRawMoveAbsolute == MOUSE_MOVE_ABSOLUTE);
static_assert(WindowApi::kVirtualKeyToScanCode == MAPVK_VK_TO_VSC);
static_assert(WindowApi::kScanCodeToVirtualKey == MAPVK_VSC_TO_VK);
static_assert(WindowApi::kPointerTypeTouch == PT_TOUCH);
static_assert(WindowApi::kPointerTypePen == PT_PEN);
static_assert(WindowApi::kExtendedStyleRightToLeft == WS_EX_LAYOUTRTL);
static_assert(sizeof(wchar_t) == sizeof(char16_t));

HWND hwndOf(WindowApi::Handle window) {
    return static_cast<HWND>(window);
}

WindowApi::Error windowResult(BOOL succeeded) {
    return succeeded ? ERROR_SUCCESS : GetLastError();
}

POINT nativePoint(const WindowApi::Point& point) {
    return {point.x, point.y};
}

LRESULT CALLBACK messageProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return handleWindowMessage(WindowApi::system(), {window, message, wParam, lParam});
}

class Win32WindowApi final : public WindowApi {
  public:
    std::int32_t getExtendedStyle(Handle window) override {
        return GetWindowLongW(hwndOf(window), GWL_EXSTYLE);
    }

    void setExtendedStyle(Handle window, std::int32_t style) override {
        SetWindowLongW(hwndOf(window), GWL_EXSTYLE, style);
    }

    void setUserData(Handle window, void* data) override {
        SetWindowLongPtrW(hwndOf(window), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(data));
    }

    Procedure messageProcedure() override { return reinterpret_cast<Procedure>(&messageProc); }

    Procedure getProcedure(Handle window) override {
        return GetWindowLongPtrW(hwndOf(window), GWLP_WNDPROC);
    }

    Error setProcedure(Handle window, Procedure procedure) override {
        // The previous value that comes back may be 0.
        SetLastError(ERROR_SUCCESS);
        return windowResult(SetWindowLongPtrW(hwndOf(window), GWLP_WNDPROC, procedure) != 0);
    }

    Result callProcedure(Procedure procedure, const WindowMessage& message) override {
        return CallWindowProcW(reinterpret_cast<WNDPROC>(procedure), hwndOf(message.window),
                               message.message, message.wParam, message.lParam);
    }

    Result callDefaultProcedure(const WindowMessage& message) override {
        return DefWindowProcW(hwndOf(message.window), message.message, message.wParam,
                              message.lParam);
    }

    void postMessage(const WindowMessage& message) override {
        PostMessageW(hwndOf(message.window), message.message, message.wParam, message.lParam);
    }

    void sendMessage(const WindowMessage& message) override {
        SendMessageW(hwndOf(message.window), message.message, message.wParam, message.lParam);
    }

    void runBetweenMessages(Handle /*window*/, const std::function<void()>& task) override {
        task();
    }

    Long getMessageExtraInfo() override { return GetMessageExtraInfo(); }

    void setFocus(Handle window) override { SetFocus(hwndOf(window)); }

    void setCapture(Handle window) override { SetCapture(hwndOf(window)); }

    void releaseCapture() override { ReleaseCapture(); }

    Error registerRawInputDevice(const RawInputDevice& device) override {
        const RAWINPUTDEVICE native{device.usagePage, device.usage, device.flags,
                                    hwndOf(device.target)};
        return windowResult(RegisterRawInputDevices(&native, 1, sizeof(native)));
    }

    bool getRawInput(Long lParam, RawInput& input) override {
        RAWINPUT native{};
        UINT size = sizeof(native);
        if (GetRawInputData(reinterpret_cast<HRAWINPUT>(lParam), RID_INPUT, &native, &size,
                            sizeof(RAWINPUTHEADER)) == static_cast<UINT>(-1))
            return false;
        const RAWMOUSE& mouse = native.data.mouse;
        input = {native.header.dwType, mouse.usFlags, mouse.lLastX, mouse.lLastY};
        return true;
    }

    Error getPointerType(std::uint32_t id, std::uint32_t& type) override {
        POINTER_INPUT_TYPE native = 0;
        const Error error = windowResult(GetPointerType(id, &native));
        type = native;
        return error;
    }

    bool getKeyboardState(KeyboardState& state) override {
        return GetKeyboardState(state.data()) != FALSE;
    }

    std::uint32_t mapVirtualKey(std::uint32_t code, std::uint32_t kind) override {
        return MapVirtualKeyW(code, kind);
    }

    std::int32_t toUnicode(std::uint32_t vk, std::uint32_t scanCode, const KeyboardState& state,
                           Text& text) override {
        return ToUnicode(vk, scanCode, state.data(), reinterpret_cast<wchar_t*>(text.data()),
                         static_cast<int>(text.size()), 0);
    }

    bool getMouseSpeed(std::int32_t& speed) override {
        return SystemParametersInfoW(SPI_GETMOUSESPEED, 0, &speed, 0) != FALSE;
    }

    bool screenToClient(Handle window, Point& point) override {
        return converted(ScreenToClient, window, point);
    }

    bool clientToScreen(Handle window, Point& point) override {
        return converted(ClientToScreen, window, point);
    }

    bool getClientRect(Handle window, Rect& rect) override {
        RECT native{};
        if (!GetClientRect(hwndOf(window), &native))
            return false;
        rect = {native.left, native.top, native.right, native.bottom};
        return true;
    }

    Error clipCursor(const Rect* rect) override {
        if (rect == nullptr)
            return windowResult(ClipCursor(nullptr));
        const RECT native{rect->left, rect->top, rect->right, rect->bottom};
        return windowResult(ClipCursor(&native));
    }

    void setCursorPosition(std::int32_t x, std::int32_t y) override { SetCursorPos(x, y); }

    void hideCursor() override { SetCursor(nullptr); }

    std::string errorText(Error error) override { return systemErrorText(static_cast<int>(error)); }

  private:
    static bool converted(BOOL(WINAPI* convert)(HWND, POINT*), Handle window, Point& point) {
        POINT native = nativePoint(point);
        if (!convert(hwndOf(window), &native))
            return false;
        point = {native.x, native.y};
        return true;
    }
};

} // namespace

WindowApi& WindowApi::system() {
    static Win32WindowApi api;
    return api;
}

} // namespace orbelantine
