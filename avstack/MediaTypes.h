#pragma once

#include <cstdint>

namespace orbelantine {

/// What a media buffer carries, as its getType() says.
enum MediaType : std::uint8_t {
    eMediaTypeKeyboard = 9,
    eMediaTypeMouse = 10,
    eMediaTypeHidKeyboard = 11,
    eMediaTypeHidMouse = 12,
    eMediaTypeTouch = 28,
};

/// The arguments of a buffer's copy operations that keep the source's own value.
inline constexpr std::uint8_t kKeepType = 255;
inline constexpr std::uint64_t kKeepTimestamp = ~std::uint64_t{0};

} // namespace orbelantine
