#pragma once

#include <string>
#include <string_view>

namespace orbelantine::phone {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// The characters of a text of unknown origin; what isn't UTF-8 becomes kReplacementCharacter.
[[nodiscard]] std::u32string decodeUtf8(std::string_view text);

void appendUtf8(std::string& text, char32_t character);

} // namespace orbelantine::phone
