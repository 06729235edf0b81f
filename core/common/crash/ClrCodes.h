#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace orbelantine {

/// Codes of exceptions that belong to a managed run time, or to another compiler's C++.
[[nodiscard]] inline bool isClrCode(std::uint32_t code) {
    constexpr std::uint32_t kCodes[] = {0xe0434352, 0xe0434f4d, 0xe0434f4e, 0xe0455858, 0xe06d7363};
    return std::find(std::begin(kCodes), std::end(kCodes), code) != std::end(kCodes);
}

} // namespace orbelantine
