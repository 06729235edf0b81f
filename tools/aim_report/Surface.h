#pragma once

#include "input/context/IInputContext.h"

namespace orbelantine::aim {

/// A surface of a fixed size in the top left corner of the computer's screen.
class Surface final : public IInputContext {
  public:
    Surface(int width, int height)
        : mWidth(width)
        , mHeight(height) {}

    [[nodiscard]] std::uint16_t convertVKCodeToUnicode(std::uint32_t /*vk*/) override { return 0; }

    [[nodiscard]] std::uint32_t mapVK(std::uint32_t /*index*/) override { return 0; }

    [[nodiscard]] std::uint32_t mapScan(std::uint32_t /*index*/) override { return 0; }

    void lockSystemMouse() override {}

    void unlockSystemMouse(std::int32_t /*x*/, std::int32_t /*y*/) override {}

    [[nodiscard]] std::int32_t getSystemMouseSpeed() override { return DEFAULT_MOUSE_SPEED; }

    bool screenToInputSurface(Point& /*point*/) override { return true; }

    bool inputSurfaceToScreen(Point& /*point*/) override { return true; }

    bool getInputSurfaceRectWithinScreen(Rect& rect) override {
        rect = {0, 0, mWidth, mHeight};
        return true;
    }

    void setCaptureMouseExclusively() override {}

    void releaseCaptureMouseExclusively() override {}

  private:
    std::int32_t mWidth;
    std::int32_t mHeight;
};

} // namespace orbelantine::aim
