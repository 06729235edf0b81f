#include "tools/virtual_phone/phone/UsLayout.h"

#include <cstddef>
#include <string_view>

namespace orbelantine::phone {

namespace {

/// Keys of neighbouring usages.
struct Run {
    std::uint8_t first;
    std::string_view plain;
    std::string_view shifted;
};

constexpr Run kRuns[] = {
    {4, "abcdefghijklmnopqrstuvwxyz", "ABCDEFGHIJKLMNOPQRSTUVWXYZ"},
    {30, "1234567890", "!@#$%^&*()"},
    {40, "\n", "\n"},
    {43, "\t ", "\t "},
    {45, R"(-=[]\\;'`,./)", R"(_+{}||:"~<>?)"},
    {84, "/*-+\n1234567890.", "/*-+\n1234567890."},
    {100, "\\", "|"},
    {103, "=", "="},
};

constexpr std::uint8_t kKeypadSteering[] = {
    key::kEnd, key::kDown, 0, key::kLeft, 0, key::kRight, key::kHome, key::kUp, 0, 0, key::kDelete};

bool isLetter(char c) {
    return c >= 'a' && c <= 'z';
}

} // namespace

char usCharacter(std::uint8_t usage, bool shift, bool capsLock) {
    for (const Run& run : kRuns) {
        if (usage < run.first || usage - run.first >= std::ssize(run.plain))
            continue;
        const auto at = static_cast<std::size_t>(usage - run.first);
        const bool upper = isLetter(run.plain[at]) ? shift != capsLock : shift;
        return upper ? run.shifted[at] : run.plain[at];
    }
    return 0;
}

std::uint8_t withoutNumLock(std::uint8_t usage) {
    const bool steers = usage >= key::kKeypad1 && usage <= key::kKeypadPoint;
    return steers ? kKeypadSteering[usage - key::kKeypad1] : usage;
}

} // namespace orbelantine::phone
