#pragma once

#include <cstdint>

namespace orbelantine {

/// What a window is told, in the numbers of `winuser.h`.
struct WindowMessage {
    /// A window: an HWND, or the id of an X11 window.
    using Handle = void*;
    using Word = std::uintptr_t;
    using Long = std::intptr_t;
    using Result = std::intptr_t;

    Handle window;
    std::uint32_t message;
    Word wParam;
    Long lParam;
};

namespace wm {
inline constexpr std::uint32_t kDestroy = 2;
inline constexpr std::uint32_t kSetFocus = 7;
inline constexpr std::uint32_t kKillFocus = 8;
inline constexpr std::uint32_t kSetCursor = 32;
inline constexpr std::uint32_t kInput = 255;
inline constexpr std::uint32_t kKeyDown = 256;
inline constexpr std::uint32_t kKeyUp = 257;
inline constexpr std::uint32_t kSysKeyDown = 260;
inline constexpr std::uint32_t kSysKeyUp = 261;
inline constexpr std::uint32_t kMouseMove = 512;
inline constexpr std::uint32_t kLButtonDown = 513;
inline constexpr std::uint32_t kLButtonUp = 514;
inline constexpr std::uint32_t kLButtonDblClk = 515;
inline constexpr std::uint32_t kRButtonDown = 516;
inline constexpr std::uint32_t kRButtonUp = 517;
inline constexpr std::uint32_t kMButtonDown = 519;
inline constexpr std::uint32_t kMButtonUp = 520;
inline constexpr std::uint32_t kMouseWheel = 522;
inline constexpr std::uint32_t kMouseHWheel = 526;
inline constexpr std::uint32_t kPointerUpdate = 581;
inline constexpr std::uint32_t kPointerDown = 582;
inline constexpr std::uint32_t kPointerUp = 583;
} // namespace wm

/// Virtual keys, of `winuser.h`.
namespace vk {
inline constexpr std::uint32_t kMenu = 0x12;
inline constexpr std::uint32_t kSpace = 0x20;
inline constexpr std::uint32_t kLWin = 0x5B;
inline constexpr std::uint32_t kRWin = 0x5C;
inline constexpr std::uint32_t kF4 = 0x73;
inline constexpr std::uint32_t kLMenu = 0xA4;
inline constexpr std::uint32_t kRMenu = 0xA5;
/// Stands for a key that an input method has taken.
inline constexpr std::uint32_t kProcessKey = 0xE5;
} // namespace vk

/// The low word of WM_SETCURSOR's lParam: the cursor is in the client area.
inline constexpr std::uint32_t kHitClient = 1;
/// Of WM_POINTER's wParam.
inline constexpr std::uint32_t kPointerPrimary = 0x20000000;
/// The bits of a key message's high word.
inline constexpr std::uint32_t kExtendedKey = 0x100;

[[nodiscard]] constexpr std::uint16_t lowWord(std::uintptr_t value) {
    return static_cast<std::uint16_t>(value & 0xFFFF);
}

[[nodiscard]] constexpr std::uint16_t highWord(std::uintptr_t value) {
    return static_cast<std::uint16_t>((value >> 16) & 0xFFFF);
}

/// A place as lParam carries it: two signed words.
[[nodiscard]] constexpr std::int32_t xOf(WindowMessage::Long lParam) {
    return static_cast<std::int16_t>(lowWord(static_cast<std::uintptr_t>(lParam)));
}

[[nodiscard]] constexpr std::int32_t yOf(WindowMessage::Long lParam) {
    return static_cast<std::int16_t>(highWord(static_cast<std::uintptr_t>(lParam)));
}

[[nodiscard]] constexpr WindowMessage::Long placeOf(std::int32_t x, std::int32_t y) {
    return static_cast<WindowMessage::Long>(
        (static_cast<std::uint32_t>(static_cast<std::uint16_t>(y)) << 16) |
        static_cast<std::uint16_t>(x));
}

} // namespace orbelantine
