// Bytes of any kind as a service record; and records that are made up whole, with elements of any
// kind and size within each other.

#include "bluetooth/radio/linux/SdpRecord.h"
#include "tests/fuzz/Input.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace orbelantine::fuzz {

namespace {

using Bytes = std::vector<std::uint8_t>;

/// Of what the input says; it may all be wrapped further.
constexpr unsigned kDeepest = 8;

/// A byte that begins a list, and the size in as many bytes as its low bits say.
Bytes sized(unsigned type, unsigned sizeIndex, const Bytes& value) {
    Bytes made = {static_cast<std::uint8_t>(type << 3 | sizeIndex)};
    for (int shift = 8 * ((1 << (sizeIndex - 5)) - 1); shift >= 0; shift -= 8)
        made.push_back(static_cast<std::uint8_t>(value.size() >> shift));
    made.insert(made.end(), value.begin(), value.end());
    return made;
}

Bytes plain(unsigned type, unsigned sizeIndex, Input& input) {
    Bytes made(1 + (type == 0 ? 0 : std::size_t{1} << sizeIndex));
    made[0] = static_cast<std::uint8_t>(type << 3 | sizeIndex);
    std::generate(made.begin() + 1, made.end(), [&] { return input.byte(); });
    return made;
}

Bytes letters(Input& input) {
    Bytes made(input.byte() % 8);
    std::ranges::generate(made, [&] { return std::uint8_t(' ' + input.byte() % 95); });
    return made;
}

/// An element, and how deep it is.
struct Element {
    Bytes bytes;
    unsigned depth = 0;
};

Element element(Input& input, unsigned depth);

Element list(unsigned type, Input& input, unsigned depth) {
    Element made;
    Bytes items;
    for (unsigned left = input.byte() % 3; left != 0 && depth < kDeepest; --left) {
        const Element item = element(input, depth + 1);
        items.insert(items.end(), item.bytes.begin(), item.bytes.end());
        made.depth = std::max(made.depth, item.depth);
    }
    return {sized(type, 7, items), made.depth + 1};
}

Element element(Input& input, unsigned depth) {
    constexpr unsigned kUuidSizes[] = {1, 2, 4};
    switch (const unsigned type = input.byte() % 9) {
    case 0:
    case 5:
        return {plain(type, 0, input)};
    case 1:
    case 2:
        return {plain(type, input.byte() % 5, input)};
    case 3:
        return {plain(type, kUuidSizes[input.byte() % 3], input)};
    case 4:
    case 8:
        return {sized(type, 5 + input.byte() % 3, letters(input))};
    default:
        return list(type, input, depth);
    }
}

/// Tags that close in their order, and nothing but printable ASCII.
void expectWellFormed(std::string_view xml) {
    std::vector<std::string_view> open;
    for (std::size_t at = xml.find('<'); at != std::string_view::npos; at = xml.find('<', at + 1)) {
        const std::size_t end = xml.find('>', at);
        ORB_FUZZ_EXPECT(end != std::string_view::npos);
        const std::string_view tag = xml.substr(at + 1, end - at - 1);
        if (tag.starts_with('/')) {
            ORB_FUZZ_EXPECT(!open.empty() && open.back() == tag.substr(1));
            open.pop_back();
        } else if (!tag.ends_with('/') && !tag.ends_with('?')) {
            open.push_back(tag.substr(0, tag.find(' ')));
        }
    }
    ORB_FUZZ_EXPECT(open.empty());
    ORB_FUZZ_EXPECT(
        std::ranges::all_of(xml, [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }));
}

/// What is read is whole, and stops being so with a byte less or more.
void read(Bytes bytes) {
    const auto record = bluez::parseSdpRecord(bytes);
    if (!record)
        return;
    expectWellFormed(record->xml);
    ORB_FUZZ_EXPECT(record->uuid.size() == 36 && std::ranges::count(record->uuid, '-') == 4);
    bytes.push_back(0);
    ORB_FUZZ_EXPECT(!bluez::parseSdpRecord(bytes));
    ORB_FUZZ_EXPECT(!bluez::parseSdpRecord(std::span(bytes).first(bytes.size() - 2)));
}

Element wrapped(Element inner, Input& input) {
    for (unsigned times = input.byte() % 4 == 0 ? input.byte() % 36 : 0; times != 0; --times)
        inner = {sized(6 + times % 2, 6 + times % 2, inner.bytes), inner.depth + 1};
    return inner;
}

void readMade(Input& input) {
    Bytes attributes = {0x09, 0, 1, 0x35, 3, 0x19, 0x11, 0x24};
    unsigned depth = 0;
    while (!input.empty()) {
        const Element value = wrapped(element(input, 1), input);
        attributes.insert(attributes.end(), {0x09, 2, input.byte()});
        attributes.insert(attributes.end(), value.bytes.begin(), value.bytes.end());
        depth = std::max(depth, value.depth);
    }
    const Bytes whole = sized(6, 7, attributes);
    ORB_FUZZ_EXPECT(bluez::parseSdpRecord(whole).has_value() == (depth < 32));
    read(whole);
}

} // namespace

} // namespace orbelantine::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orbelantine::fuzz;
    read({data, data + size});
    Input input(data, size);
    readMade(input);
    return 0;
}
