#include "tools/virtual_phone/picture/Svg.h"

#include "tools/virtual_phone/log/Utf8.h"

#include <array>
#include <charconv>
#include <cmath>

namespace orbelantine::phone {

namespace {

bool isXmlCharacter(char32_t c) {
    if (c < U' ')
        return c == U'\t' || c == U'\n' || c == U'\r';
    return c != 0xFFFE && c != 0xFFFF;
}

std::string escaped(std::string_view text) {
    std::string out;
    for (const char32_t c : decodeUtf8(text)) {
        if (c == U'&')
            out += "&amp;";
        else if (c == U'<')
            out += "&lt;";
        else if (c == U'>')
            out += "&gt;";
        else if (c == U'"')
            out += "&quot;";
        else
            appendUtf8(out, isXmlCharacter(c) ? c : kReplacementCharacter);
    }
    return out;
}

} // namespace

std::string svgNumber(double number) {
    const double rounded = std::round(number * 10) / 10;
    std::array<char, 64> buffer;
    const auto [end, error] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), rounded + 0.0);
    return error == std::errc() ? std::string(buffer.data(), end) : "0";
}

SvgWriter::Attribute::Attribute(std::string_view attributeName, double number)
    : name(attributeName)
    , value(svgNumber(number)) {}

SvgWriter& SvgWriter::open(std::string_view element, Attributes attributes) {
    start(element, attributes, ">");
    mOpen.push_back(element);
    return *this;
}

SvgWriter& SvgWriter::close() {
    mDocument += "</";
    mDocument += mOpen.back();
    mDocument += '>';
    mOpen.pop_back();
    endLine();
    return *this;
}

SvgWriter& SvgWriter::leaf(std::string_view element, Attributes attributes) {
    start(element, attributes, "/>");
    endLine();
    return *this;
}

SvgWriter& SvgWriter::text(std::string_view element, Attributes attributes,
                           std::string_view content) {
    open(element, attributes);
    mDocument += escaped(content);
    return close();
}

SvgWriter& SvgWriter::content(std::string_view text) {
    mDocument += escaped(text);
    return *this;
}

std::string SvgWriter::finish() {
    while (!mOpen.empty())
        close();
    return std::move(mDocument);
}

void SvgWriter::endLine() {
    // Between the parts of a text a line's end would show as a space.
    if (mOpen.empty() || mOpen.back() != "text")
        mDocument += '\n';
}

void SvgWriter::start(std::string_view element, Attributes attributes, std::string_view end) {
    mDocument += '<';
    mDocument += element;
    for (const Attribute& attribute : attributes) {
        mDocument += ' ';
        mDocument += attribute.name;
        mDocument += "=\"" + escaped(attribute.value) + '"';
    }
    mDocument += end;
}

} // namespace orbelantine::phone
