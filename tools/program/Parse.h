#pragma once

#include <charconv>
#include <string_view>
#include <system_error>

namespace orbelantine::phone {

/// Reads the whole text as a number from `low` to `high`; `number` is of use only if it is one.
template <typename T>
[[nodiscard]] bool parseNumber(std::string_view text, T low, T high, T& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number >= low &&
           number <= high;
}

} // namespace orbelantine::phone
