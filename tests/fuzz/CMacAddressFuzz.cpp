// Addresses from texts and numbers against a model made of the standard library's conversions.

#include "core/common/types/CMacAddress.h"
#include "tests/fuzz/Input.h"

#include <charconv>
#include <optional>
#include <string>

namespace orbelantine::fuzz {

namespace {

std::optional<unsigned> valueOf(const std::string& pair) {
    unsigned value = 0;
    const char* const end = pair.data() + pair.size();
    const auto parsed = std::from_chars(pair.data(), end, value, 16);
    return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(value) : std::nullopt;
}

/// The address of a text whose length is known; none for an empty one.
std::optional<std::uint64_t> parse(const std::string& text) {
    std::uint64_t address = 0;
    for (std::size_t i = 0; i < 6; ++i) {
        const bool within = 3 * i + 1 < text.size();
        const auto value = within ? valueOf(text.substr(3 * i, 2)) : 0;
        if (!value)
            return std::nullopt;
        address = address << 8 | *value;
    }
    return address;
}

std::wstring format(std::uint64_t address) {
    std::wstring text;
    for (int shift = 40; shift >= 0; shift -= 8) {
        wchar_t pair[4];
        std::swprintf(pair, 4, L"%02X:", static_cast<unsigned>(address >> shift & 0xFF));
        text += pair;
    }
    text.pop_back();
    return text;
}

void expect(const CMacAddress& address, std::optional<std::uint64_t> expected) {
    ORB_FUZZ_EXPECT(address.isEmpty() == !expected);
    ORB_FUZZ_EXPECT(address.getUllAddress() == expected.value_or(0));
    ORB_FUZZ_EXPECT(address.getStdStringAddress() == (expected ? format(*expected) : L""));
}

/// A null-terminated text breaks off as if more followed, unless a whole pair was the last.
std::optional<std::uint64_t> parseTerminated(std::string text) {
    text.resize(std::min(text.size(), text.find('\0')));
    return parse(text.size() % 3 == 2 ? text : text + std::string(2, '\0'));
}

void compareTexts(const std::string& text) {
    const std::wstring wide(text.begin(), text.end());
    expect(CMacAddress(text), parse(text));
    expect(CMacAddress(wide), parse(text));
    expect(CMacAddress(wide.c_str()), parseTerminated(text));
}

void compareNumber(Input input) {
    std::uint8_t bytes[6];
    std::uint64_t number = 0;
    for (std::uint8_t& byte : bytes) {
        byte = input.byte();
        number = number << 8 | byte;
    }
    expect(CMacAddress(number), number);
    expect(CMacAddress(bytes), number);
    expect(CMacAddress(number | std::uint64_t{input.byte()} << 48), number);
}

} // namespace

} // namespace orbelantine::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orbelantine::fuzz;
    compareTexts(std::string(data, data + size));
    compareNumber({data, size});
    return 0;
}
