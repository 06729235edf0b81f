#include "hid/reports/HIDReportState.h"

#include "hid/reports/HIDUsages.h"

#include <algorithm>
#include <iterator>

namespace orbelantine {

namespace {

// The button of each event type; from an odd type it goes up, from an even one down.
constexpr std::uint8_t kButtonOfEvent[] = {0, 1, 1, 2, 2, 0, 0, 4, 4};

void setBits(std::uint8_t& bits, unsigned mask, bool set) {
    bits = static_cast<std::uint8_t>(set ? bits | mask : bits & ~mask);
}

} // namespace

void applyMouseButton(std::uint8_t& buttons, std::uint8_t eventType) {
    if (eventType < std::size(kButtonOfEvent))
        setBits(buttons, kButtonOfEvent[eventType], eventType % 2 == 0);
}

void applyModifier(std::uint8_t& modifiers, std::uint8_t usage, bool down) {
    if (usage >= HIDTypes::kKeyLeftControl && usage <= HIDTypes::kKeyRightGui)
        setBits(modifiers, 1U << (usage - HIDTypes::kKeyLeftControl), down);
}

void applyKey(std::uint8_t* keys, std::size_t count, std::uint8_t usage, bool down) {
    constexpr std::uint8_t kFree = 0;
    std::uint8_t* const end = keys + count;
    if (!down) {
        std::replace(keys, end, usage, kFree);
        return;
    }
    std::uint8_t* const place = std::find(keys, end, kFree);
    if (place != end)
        *place = usage;
}

} // namespace orbelantine
