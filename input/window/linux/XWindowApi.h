#pragma once

#include "input/window/linux/XMessageThread.h"

#include <memory>
#include <mutex>

namespace orbelantine {

/// The calls on an X display. Its thread and connection exist as long as a window is a surface.
class XWindowApi final : public WindowApi {
  public:
    [[nodiscard]] std::int32_t getExtendedStyle(Handle window) override;
    void setExtendedStyle(Handle window, std::int32_t style) override;
    void setUserData(Handle window, void* data) override;
    [[nodiscard]] Procedure messageProcedure() override;
    [[nodiscard]] Procedure getProcedure(Handle window) override;
    [[nodiscard]] Error setProcedure(Handle window, Procedure procedure) override;
    Result callProcedure(Procedure procedure, const WindowMessage& message) override;
    Result callDefaultProcedure(const WindowMessage& message) override;
    void postMessage(const WindowMessage& message) override;
    void sendMessage(const WindowMessage& message) override;
    void runBetweenMessages(Handle window, const std::function<void()>& task) override;
    [[nodiscard]] Long getMessageExtraInfo() override;

    void setFocus(Handle window) override;
    void setCapture(Handle window) override;
    void releaseCapture() override;

    [[nodiscard]] Error registerRawInputDevice(const RawInputDevice& device) override;
    [[nodiscard]] bool getRawInput(Long lParam, RawInput& input) override;
    [[nodiscard]] Error getPointerType(std::uint32_t id, std::uint32_t& type) override;

    [[nodiscard]] bool getKeyboardState(KeyboardState& state) override;
    [[nodiscard]] std::uint32_t mapVirtualKey(std::uint32_t code, std::uint32_t kind) override;
    [[nodiscard]] std::int32_t toUnicode(std::uint32_t vk, std::uint32_t scanCode,
                                         const KeyboardState& state, Text& text) override;

    [[nodiscard]] bool getMouseSpeed(std::int32_t& speed) override;
    bool screenToClient(Handle window, Point& point) override;
    bool clientToScreen(Handle window, Point& point) override;
    [[nodiscard]] bool getClientRect(Handle window, Rect& rect) override;
    [[nodiscard]] Error clipCursor(const Rect* rect) override;
    void setCursorPosition(std::int32_t x, std::int32_t y) override;
    void hideCursor() override;

    [[nodiscard]] std::string errorText(Error error) override;

  private:
    using Thread = std::shared_ptr<XMessageThread>;

    [[nodiscard]] Thread thread();
    [[nodiscard]] XError install(xcb_window_t window);
    void giveBack(xcb_window_t window);
    /// What `action` answers of the surfaces, or `otherwise` without any.
    template <class Value, class Action>
    Value ofSurfaces(Value otherwise, Action&& action);
    bool translate(Handle window, Point& point, bool toScreen);

    std::mutex mMutex;
    Thread mThread;
};

} // namespace orbelantine
