#include "binding/Utf16.h"

#include <string_view>

namespace orbelantine::binding {

namespace {

constexpr char32_t kSupplementary = 0x10000;
constexpr char32_t kLastCodePoint = 0x10FFFF;
constexpr char16_t kReplacement = 0xFFFD;

constexpr bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool isLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

constexpr char32_t combine(char16_t high, char16_t low) {
    return kSupplementary + ((char32_t{high} - 0xD800) << 10) + (char32_t{low} - 0xDC00);
}

std::wstring widen(std::u16string_view text) {
    std::wstring wide;
    wide.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool pair =
            isHighSurrogate(text[i]) && i + 1 < text.size() && isLowSurrogate(text[i + 1]);
        wide.push_back(static_cast<wchar_t>(pair ? combine(text[i], text[i + 1]) : text[i]));
        i += pair;
    }
    return wide;
}

void append(std::u16string& text, char32_t point) {
    if (point < kSupplementary) {
        text.push_back(static_cast<char16_t>(point));
    } else if (point > kLastCodePoint) {
        text.push_back(kReplacement);
    } else {
        const char32_t offset = point - kSupplementary;
        text.push_back(static_cast<char16_t>(0xD800 + (offset >> 10)));
        text.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FF)));
    }
}

} // namespace

std::wstring fromUtf16(const char16_t* text) {
    const std::u16string_view units = text ? std::u16string_view(text) : std::u16string_view();
    if constexpr (sizeof(wchar_t) == sizeof(char16_t))
        return {units.begin(), units.end()};
    else
        return widen(units);
}

std::u16string toUtf16(const std::wstring& text) {
    if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
        return {text.begin(), text.end()};
    } else {
        std::u16string units;
        units.reserve(text.size());
        for (const wchar_t c : text)
            append(units, static_cast<char32_t>(c));
        return units;
    }
}

} // namespace orbelantine::binding
