#pragma once

#include <boost/signals2/signal.hpp>

#include <cstdint>
#include <string>

namespace orbelantine {

/// One input surface: a place on the computer where the user's keys, mouse and pointers arrive. It
/// raises what happens there as signals, on its own thread, and answers questions about the
/// surface. Coordinates are pixels: of clicks and moves relative to the surface, of the wheel and
/// of pointers on the screen.
class IInputContext {
  public:
    enum eMouseButton : std::int32_t { MouseButtonLeft = 0, MouseButtonRight = 1 };

    enum ePointerType : std::int32_t { PointerPen = 0, PointerTouch = 1, PointerOther = 2 };

    struct Point {
        std::int32_t x;
        std::int32_t y;
    };

    struct Rect {
        std::int32_t left;
        std::int32_t top;
        std::int32_t right;
        std::int32_t bottom;
    };

    /// Keys that a source asks for by what they do.
    enum LogicalKey : std::uint32_t { KeySpace = 0, KeyControl = 1, KeySystem = 2 };

    /// The middle of the system's 1 to 20.
    static constexpr std::int32_t DEFAULT_MOUSE_SPEED = 10;

    // Out of line: with them every surface would instantiate all of the signals.
    IInputContext();
    virtual ~IInputContext();
    IInputContext(const IInputContext&) = delete;
    IInputContext& operator=(const IInputContext&) = delete;

    /// The UTF-16 unit of a virtual key under the present keyboard state; 0 if it gives none.
    [[nodiscard]] virtual std::uint16_t convertVKCodeToUnicode(std::uint32_t vk) = 0;
    /// The virtual key of a LogicalKey.
    [[nodiscard]] virtual std::uint32_t mapVK(std::uint32_t index) = 0;
    /// The hardware scan code of a LogicalKey.
    [[nodiscard]] virtual std::uint32_t mapScan(std::uint32_t index) = 0;
    /// Confines the system cursor to the surface and hides it.
    virtual void lockSystemMouse() = 0;
    /// Releases the cursor; with neither coordinate negative also moves it to that screen position.
    virtual void unlockSystemMouse(std::int32_t x = -1, std::int32_t y = -1) = 0;
    /// 1 to 20; DEFAULT_MOUSE_SPEED if it can't be read.
    [[nodiscard]] virtual std::int32_t getSystemMouseSpeed() = 0;
    /// Convert in place; false if the point is left as it was.
    virtual bool screenToInputSurface(Point& point) = 0;
    virtual bool inputSurfaceToScreen(Point& point) = 0;
    virtual bool getInputSurfaceRectWithinScreen(Rect& rect) = 0;
    /// Directs all mouse input to the surface, wherever the cursor is.
    virtual void setCaptureMouseExclusively() = 0;
    virtual void releaseCaptureMouseExclusively() = 0;

    template <class Signature>
    using Signal = boost::signals2::signal<Signature>;

    /// vk, scan code, repeat count
    Signal<void(std::uint32_t, std::uint32_t, std::int32_t)> onKeyDown;
    /// vk, scan code
    Signal<void(std::uint32_t, std::uint32_t)> onKeyUp;
    Signal<void(eMouseButton, std::int32_t, std::int32_t)> onMouseClickDown;
    Signal<void(eMouseButton, std::int32_t, std::int32_t)> onMouseClickUp;
    Signal<void(std::int32_t, std::int32_t)> onAbsoluteMouseMove;
    /// Delta (-3 to 3), then the cursor's place on the screen.
    Signal<void(std::int32_t, std::int32_t, std::int32_t)> onRelativeMouseWheel;
    /// Deltas of the hardware, before the system's acceleration.
    Signal<void(std::int32_t, std::int32_t)> onRelativeMouseMove;
    /// Type, id, place on the screen, whether it is the primary pointer.
    Signal<void(ePointerType, std::uint32_t, std::int32_t, std::int32_t, bool)> onPointerDown;
    Signal<void(ePointerType, std::uint32_t, std::int32_t, std::int32_t, bool)> onPointerUp;
    Signal<void(ePointerType, std::uint32_t, std::int32_t, std::int32_t, bool)> onPointerUpdate;
    Signal<void()> onInputSurfaceLostFocus;
    Signal<void()> onInputSurfaceDestroyed;
    /// Width and height of the phone's picture, its scale, its inset.
    Signal<void(std::int32_t, std::int32_t, double, std::int32_t)> onLogicalDimensionsChanged;
    /// 1 (natural) to 4, in quarter turns.
    Signal<void(std::int32_t)> onRotationChanged;
    /// Text made by more than one key. Only a host's context raises it.
    Signal<void(std::wstring)> onTextComposed;
};

} // namespace orbelantine
