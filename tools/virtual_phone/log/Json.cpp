#include "tools/virtual_phone/log/Json.h"

#include "tools/virtual_phone/log/Utf8.h"

#include <array>
#include <charconv>

namespace orbelantine::phone {

namespace {

void appendControl(std::string& out, char32_t control) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    out += "\\u00";
    out += kDigits[control >> 4];
    out += kDigits[control & 0x0F];
}

void appendEscaped(std::string& out, char32_t character) {
    if (character == U'\n')
        out += "\\n";
    else if (character == U'\t')
        out += "\\t";
    else if (character < U' ')
        appendControl(out, character);
    else {
        if (character == U'"' || character == U'\\')
            out += '\\';
        appendUtf8(out, character);
    }
}

} // namespace

std::string jsonText(std::string_view text) {
    std::string out = "\"";
    for (const char32_t character : decodeUtf8(text))
        appendEscaped(out, character);
    return out + "\"";
}

std::string jsonNumber(double number) {
    std::array<char, 32> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end};
}

} // namespace orbelantine::phone
