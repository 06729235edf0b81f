#include "tools/virtual_phone/phone/KeyNames.h"

#include <algorithm>
#include <iterator>

namespace orbelantine::phone {

namespace {

struct Name {
    std::uint16_t code;
    const char* name;
};

constexpr Name kConsumerKeys[] = {
    {48, "power"}, {184, "eject"}, {418, "app switch"}, {545, "search"}, {547, "home"},
};

constexpr Name kSystemKeys[] = {{129, "power down"}, {130, "sleep"}, {131, "wake up"}};

template <typename Table>
const char* nameIn(const Table& table, std::uint16_t code) {
    const auto* found = std::ranges::find(table, code, &Name::code);
    return found == std::end(table) ? "" : found->name;
}

} // namespace

const char* consumerKeyName(std::uint16_t usage) {
    return nameIn(kConsumerKeys, usage);
}

const char* systemKeyName(std::uint8_t code) {
    return nameIn(kSystemKeys, code);
}

} // namespace orbelantine::phone
