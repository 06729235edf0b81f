#include "tools/virtual_phone/driver/Address.h"

#include <charconv>
#include <cstddef>

namespace orbelantine::phone {

namespace {

constexpr std::size_t kTextLength = 17;
constexpr std::size_t kPairStride = 3;

bool parsePair(std::string_view pair, std::uint8_t& byte) {
    const auto [end, error] = std::from_chars(pair.data(), pair.data() + pair.size(), byte, 16);
    return error == std::errc() && end == pair.data() + pair.size();
}

std::string join(const Address& address, std::string_view digits, std::string_view separator) {
    std::string text;
    for (const std::uint8_t byte : address.bytes) {
        if (!text.empty())
            text += separator;
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return text;
}

} // namespace

std::optional<Address> parseAddress(std::string_view text) {
    if (text.size() != kTextLength)
        return std::nullopt;
    Address address;
    for (std::size_t i = 0; i < address.bytes.size(); ++i) {
        const std::size_t at = i * kPairStride;
        if (!parsePair(text.substr(at, 2), address.bytes[i]))
            return std::nullopt;
        if (at + 2 < text.size() && text[at + 2] != ':')
            return std::nullopt;
    }
    return address;
}

std::string toText(const Address& address) {
    return join(address, "0123456789ABCDEF", ":");
}

std::string toDigits(const Address& address) {
    return join(address, "0123456789abcdef", "");
}

} // namespace orbelantine::phone
