#include "bluetooth/dbus/linux/RecordXml.h"

#include <algorithm>

namespace orbelantine::dbus::xml {

namespace {

constexpr std::string_view kDigits = "0123456789abcdef";

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

} // namespace

std::string hex(std::uint64_t value, int digits) {
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text += kDigits[(value >> shift) & 0x0F];
    return text;
}

std::string hex(std::span<const std::uint8_t> bytes) {
    std::string digits;
    for (const std::uint8_t byte : bytes)
        digits += hex(byte, 2);
    return digits;
}

std::string element(std::string_view type, std::string_view value) {
    return "<" + std::string(type) + " value=\"" + std::string(value) + "\"/>";
}

std::string boolean(bool value) {
    return element("boolean", value ? "true" : "false");
}

std::string text(std::string_view value) {
    if (isPrintable(value))
        return element("text", escaped(value));
    return bytes({reinterpret_cast<const std::uint8_t*>(value.data()), value.size()});
}

std::string url(std::string_view value) {
    return element("url", escaped(value));
}

std::string bytes(std::span<const std::uint8_t> value) {
    return "<text encoding=\"hex\" value=\"" + hex(value) + "\"/>";
}

std::string list(std::string_view type, std::string_view items) {
    const std::string name(type);
    return "<" + name + ">" + std::string(items) + "</" + name + ">";
}

std::string attribute(std::uint16_t id, std::string_view value) {
    return "  <attribute id=\"0x" + hex(id, 4) + "\">" + std::string(value) + "</attribute>\n";
}

std::string record(std::string_view attributes) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<record>\n" + std::string(attributes) +
           "</record>\n";
}

bool isPrintable(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

} // namespace orbelantine::dbus::xml
