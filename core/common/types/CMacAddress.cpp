#include "core/common/types/CMacAddress.h"

#include <algorithm>

namespace orbelantine {

namespace {

// Two digits and a separator.
constexpr std::size_t kCharactersPerByte = 3;
constexpr std::size_t kTextLength = 17;
// What a text of unknown length counts as.
constexpr std::size_t kUnknownLength = 36;

// A null after a whole pair ends the text there. Anywhere else it is a character that is no digit.
std::size_t lengthOf(const wchar_t* text) {
    const wchar_t* const end = std::find(text, text + kTextLength, L'\0');
    const auto length = static_cast<std::size_t>(end - text);
    return length % kCharactersPerByte == 2 ? length : kUnknownLength;
}

int digitValue(wchar_t c) {
    if (c >= L'0' && c <= L'9')
        return c - L'0';
    if (c >= L'A' && c <= L'F')
        return c - L'A' + 10;
    if (c >= L'a' && c <= L'f')
        return c - L'a' + 10;
    return -1;
}

} // namespace

CMacAddress::CMacAddress(const wchar_t* text) {
    if (text != nullptr)
        parse(text, lengthOf(text));
}

CMacAddress::CMacAddress(const std::wstring& text) {
    parse(text.data(), text.size());
}

CMacAddress::CMacAddress(const std::string& text)
    : CMacAddress(std::wstring(text.begin(), text.end())) {}

CMacAddress::CMacAddress(std::uint64_t number) {
    for (auto byte = mBytes.rbegin(); byte != mBytes.rend(); ++byte, number >>= 8)
        *byte = static_cast<std::uint8_t>(number);
    buildText();
}

CMacAddress::CMacAddress(const std::uint8_t* bytes) {
    if (bytes == nullptr)
        return;
    std::copy_n(bytes, mBytes.size(), mBytes.begin());
    buildText();
}

std::uint64_t CMacAddress::getUllAddress() const {
    std::uint64_t number = 0;
    for (const std::uint8_t byte : mBytes)
        number = number << 8 | byte;
    return number;
}

void CMacAddress::parse(const wchar_t* text, std::size_t length) {
    for (std::size_t i = 0; i < mBytes.size(); ++i) {
        const std::size_t position = i * kCharactersPerByte;
        if (position + 1 >= length)
            break;
        const int high = digitValue(text[position]);
        const int low = high < 0 ? high : digitValue(text[position + 1]);
        if (low < 0) {
            mBytes.fill(0);
            return;
        }
        mBytes[i] = static_cast<std::uint8_t>(high << 4 | low);
    }
    buildText();
}

void CMacAddress::buildText() {
    static constexpr const wchar_t* kDigits = L"0123456789ABCDEF";
    auto out = mText.begin();
    for (const std::uint8_t byte : mBytes) {
        *out++ = kDigits[byte >> 4];
        *out++ = kDigits[byte & 0xF];
        *out++ = L':';
    }
    mText.back() = L'\0';
}

} // namespace orbelantine
