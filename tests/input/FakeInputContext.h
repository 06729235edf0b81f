#pragma once

#include "input/context/IInputContext.h"

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine::test {

/// A surface as a script tells it; its signals are raised by whoever holds it. Records what is
/// asked of the mouse. Sources may ask from any thread; the public fields are set before they do.
class FakeInputContext final : public IInputContext {
  public:
    Rect rect{100, 200, 1100, 700};
    std::int32_t mouseSpeed = DEFAULT_MOUSE_SPEED;
    /// Whether points can be converted and the rectangle be read.
    bool answers = true;
    /// Takes what is asked of the mouse, in place of takeCalls.
    std::function<void(const std::string&)> onMouseCall;

    /// The key gives this character from now on; 0 for none.
    void simulateCharacter(std::uint32_t vk, std::uint16_t character) {
        const std::lock_guard lock(mMutex);
        mCharacters[vk] = character;
    }

    void simulateKey(bool down, std::uint32_t vk, std::uint32_t scanCode, std::int32_t count = 1) {
        if (down)
            onKeyDown(vk, scanCode, count);
        else
            onKeyUp(vk, scanCode);
    }

    /// A click of the left button.
    void simulateClick(std::int32_t x, std::int32_t y) {
        onMouseClickDown(MouseButtonLeft, x, y);
        onMouseClickUp(MouseButtonLeft, x, y);
    }

    /// What was asked of the mouse since the last call, such as "unlockSystemMouse(-1, -1)".
    [[nodiscard]] std::vector<std::string> takeCalls() {
        const std::lock_guard lock(mMutex);
        return std::exchange(mCalls, {});
    }

    std::uint16_t convertVKCodeToUnicode(std::uint32_t vk) override {
        const std::lock_guard lock(mMutex);
        const auto found = mCharacters.find(vk);
        return found != mCharacters.end() ? found->second : std::uint16_t{0};
    }

    std::uint32_t mapVK(std::uint32_t index) override {
        const std::uint32_t keys[] = {32, 17, 91};
        return keys[index];
    }

    std::uint32_t mapScan(std::uint32_t index) override {
        const std::uint32_t codes[] = {57, 29, 219};
        return codes[index];
    }

    void lockSystemMouse() override { record("lockSystemMouse"); }

    void unlockSystemMouse(std::int32_t x = -1, std::int32_t y = -1) override {
        record("unlockSystemMouse(" + std::to_string(x) + ", " + std::to_string(y) + ")");
    }

    std::int32_t getSystemMouseSpeed() override { return mouseSpeed; }

    bool screenToInputSurface(Point& point) override { return shift(point, -1); }

    bool inputSurfaceToScreen(Point& point) override { return shift(point, 1); }

    bool getInputSurfaceRectWithinScreen(Rect& result) override {
        if (answers)
            result = rect;
        return answers;
    }

    void setCaptureMouseExclusively() override { record("setCaptureMouseExclusively"); }

    void releaseCaptureMouseExclusively() override { record("releaseCaptureMouseExclusively"); }

  private:
    bool shift(Point& point, std::int32_t sign) const {
        if (answers)
            point = {point.x + sign * rect.left, point.y + sign * rect.top};
        return answers;
    }

    void record(std::string call) {
        if (onMouseCall)
            return onMouseCall(call);
        const std::lock_guard lock(mMutex);
        mCalls.push_back(std::move(call));
    }

    std::mutex mMutex;
    std::map<std::uint32_t, std::uint16_t> mCharacters;
    std::vector<std::string> mCalls;
};

} // namespace orbelantine::test
