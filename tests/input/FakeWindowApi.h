#pragma once

#include "input/window/WindowApi.h"
#include "tests/support/Journal.h"

#include <map>
#include <sstream>
#include <string>

namespace orbelantine::test {

/// Values as one text, with spaces between.
template <class... Values>
std::string spaced(const Values&... values) {
    std::ostringstream out;
    const char* space = "";
    ((out << space << values, space = " "), ...);
    return out.str();
}

/// A system with one window of 100 by 100 pixels, whose client area begins at `origin`. It writes
/// down what it is asked to do.
class FakeWindowApi final : public WindowApi {
  public:
    static constexpr Procedure kHosts = 7001;
    static constexpr Procedure kOwn = 7002;
    static constexpr Error kFailure = 1400;

    Journal& journal;
    /// The name of the calls that fail.
    std::string failing;
    Point origin{300, 200};
    std::int32_t style = 0;
    Procedure procedure = kHosts;
    Long extraInfo = 0;
    RawInput raw{kRawTypeMouse, 0, 0, 0};
    std::uint32_t pointerType = 0;
    std::uint32_t behindScanCode = 0x41;
    Result passedResult = 55;
    Handle window = this;
    std::u16string typed;

    explicit FakeWindowApi(Journal& notes)
        : journal(notes) {}

    /// As the window's thread gives it out.
    Result send(std::uint32_t message, Word wParam = 0, Long lParam = 0) {
        return handleWindowMessage(*this, {window, message, wParam, lParam});
    }

    std::int32_t getExtendedStyle(Handle) override { return style; }

    void setExtendedStyle(Handle, std::int32_t value) override { style = value; }

    void setUserData(Handle, void*) override {}

    Procedure messageProcedure() override { return kOwn; }

    Procedure getProcedure(Handle) override { return procedure; }

    Error setProcedure(Handle, Procedure value) override {
        const Error error = result("setProcedure");
        procedure = error ? procedure : value;
        return error;
    }

    Result callProcedure(Procedure to, const WindowMessage& m) override {
        journal.note(spaced(to == kHosts ? "passed" : "lost", m.message, m.wParam, m.lParam));
        return passedResult;
    }

    Result callDefaultProcedure(const WindowMessage& m) override {
        journal.note(spaced("default", m.message));
        return 66;
    }

    void postMessage(const WindowMessage& m) override {
        journal.note(
            spaced("post", m.message, m.wParam == reinterpret_cast<Word>(window), m.lParam));
    }

    void sendMessage(const WindowMessage& m) override { handleWindowMessage(*this, m); }

    void runBetweenMessages(Handle, const std::function<void()>& task) override { task(); }

    Long getMessageExtraInfo() override { return extraInfo; }

    void setFocus(Handle) override { journal.note("focus"); }

    void setCapture(Handle) override { journal.note("capture"); }

    void releaseCapture() override { journal.note("release"); }

    Error registerRawInputDevice(const RawInputDevice& d) override {
        journal.note(spaced("raw", d.usagePage, d.usage, d.flags, d.target == window));
        return result("registerRawInputDevice");
    }

    bool getRawInput(Long, RawInput& input) override {
        input = raw;
        return result("getRawInput") == 0;
    }

    Error getPointerType(std::uint32_t, std::uint32_t& type) override {
        type = pointerType;
        return result("getPointerType");
    }

    bool getKeyboardState(KeyboardState&) override { return true; }

    std::uint32_t mapVirtualKey(std::uint32_t code, std::uint32_t kind) override {
        return kind == kScanCodeToVirtualKey ? behindScanCode : code + 1;
    }

    std::int32_t toUnicode(std::uint32_t vk, std::uint32_t scanCode, const KeyboardState&,
                           Text& text) override {
        journal.note(spaced("toUnicode", vk, scanCode));
        typed.copy(text.data(), text.size());
        return static_cast<std::int32_t>(typed.size());
    }

    bool getMouseSpeed(std::int32_t& speed) override {
        speed = 3;
        return result("getMouseSpeed") == 0;
    }

    bool screenToClient(Handle, Point& point) override { return moved(point, -1); }

    bool clientToScreen(Handle, Point& point) override { return moved(point, 1); }

    bool getClientRect(Handle, Rect& rect) override {
        rect = {0, 0, 100, 100};
        return result("getClientRect") == 0;
    }

    Error clipCursor(const Rect* r) override {
        journal.note(r ? spaced("clip", r->left, r->top, r->right, r->bottom) : "unclip");
        return result("clipCursor");
    }

    void setCursorPosition(std::int32_t x, std::int32_t y) override {
        journal.note(spaced("cursor", x, y));
    }

    void hideCursor() override { journal.note("hide"); }

    std::string errorText(Error error) override { return spaced("error", error); }

  private:
    [[nodiscard]] Error result(const char* call) const { return failing == call ? kFailure : 0; }

    bool moved(Point& point, int sign) const {
        if (failing == "convert")
            return false;
        point = {point.x + sign * origin.x, point.y + sign * origin.y};
        return true;
    }
};

} // namespace orbelantine::test
