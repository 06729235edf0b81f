#pragma once

#include "input/context/IInputContext.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace orbelantine::soak {

/// A surface that knows how far the keyboard's worker has come: it asks for the space key at the
/// beginning of each key down.
class Surface final : public IInputContext {
  public:
    void pressKey(std::uint32_t scanCode, std::int32_t count = 1) {
        {
            const std::lock_guard lock(mMutex);
            ++mPressed;
        }
        onKeyDown(0, scanCode, count);
    }

    /// Until the worker is done with all key events before this call. Sends nothing: after the
    /// first call, which only marks the key as held, it is a repeat.
    [[nodiscard]] bool awaitKeys() {
        constexpr std::uint32_t kScanCodeOfF12 = 88;
        constexpr std::chrono::seconds kBound(10);
        pressKey(kScanCodeOfF12, 0);
        std::unique_lock lock(mMutex);
        return mReached.wait_for(lock, kBound, [this] { return mBegun == mPressed; });
    }

    [[nodiscard]] std::uint32_t mapVK(std::uint32_t index) override {
        constexpr std::uint32_t kSpace = 32;
        if (index == KeySpace) {
            {
                const std::lock_guard lock(mMutex);
                ++mBegun;
            }
            mReached.notify_all();
        }
        return kSpace;
    }

    [[nodiscard]] std::uint16_t convertVKCodeToUnicode(std::uint32_t /*vk*/) override { return 0; }

    [[nodiscard]] std::uint32_t mapScan(std::uint32_t /*index*/) override { return 0; }

    void lockSystemMouse() override {}

    void unlockSystemMouse(std::int32_t /*x*/, std::int32_t /*y*/) override {}

    [[nodiscard]] std::int32_t getSystemMouseSpeed() override { return DEFAULT_MOUSE_SPEED; }

    bool screenToInputSurface(Point& /*point*/) override { return true; }

    bool inputSurfaceToScreen(Point& /*point*/) override { return true; }

    bool getInputSurfaceRectWithinScreen(Rect& rect) override {
        rect = {0, 0, 1000, 1000};
        return true;
    }

    void setCaptureMouseExclusively() override {}

    void releaseCaptureMouseExclusively() override {}

  private:
    std::mutex mMutex;
    std::condition_variable mReached;
    std::uint64_t mPressed = 0;
    std::uint64_t mBegun = 0;
};

} // namespace orbelantine::soak
