#pragma once

#include <xkbcommon/xkbcommon.h>

#include <cstdint>

namespace orbelantine {

/// A key by its place on the keyboard.
struct XKey {
    /// Of the kernel's `input-event-codes.h`; X's keycode is 8 more.
    std::uint8_t code;
    /// Of set 1, with bit 7 set for an extended key; Pause and Num Lock as Windows' messages tell.
    std::uint8_t scan;
    /// The virtual key of a US keyboard, on the keypad without Num Lock.
    std::uint8_t vk;
};

inline constexpr std::uint8_t kXKeycodeOffset = 8;

/// Null for an unknown keycode.
[[nodiscard]] const XKey* findXKey(xkb_keycode_t keycode);
/// The first key that `matches`, or null.
template <class Predicate>
[[nodiscard]] const XKey* findXKeyIf(Predicate matches);

/// The virtual key of `key` where it has `symbol` unshifted.
[[nodiscard]] std::uint32_t virtualKeyOf(const XKey& key, xkb_keysym_t symbol);
/// The keypad's digits and its point with Num Lock on, else 0.
[[nodiscard]] std::uint32_t numpadKeyOf(const XKey& key);

struct XKeys {
    const XKey* first;
    const XKey* last;

    [[nodiscard]] const XKey* begin() const { return first; }

    [[nodiscard]] const XKey* end() const { return last; }
};

[[nodiscard]] XKeys allXKeys();

template <class Predicate>
const XKey* findXKeyIf(Predicate matches) {
    for (const XKey& key : allXKeys())
        if (matches(key))
            return &key;
    return nullptr;
}

} // namespace orbelantine
