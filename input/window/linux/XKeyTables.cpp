#include "input/window/linux/XKeyTables.h"

#include <algorithm>
#include <iterator>

namespace orbelantine {

namespace {

constexpr XKey kXKeys[] = {
    {1, 0x01, 0x1B},                                                            // escape
    {2, 0x02, '1'},    {3, 0x03, '2'},    {4, 0x04, '3'},    {5, 0x05, '4'},    //
    {6, 0x06, '5'},    {7, 0x07, '6'},    {8, 0x08, '7'},    {9, 0x09, '8'},    //
    {10, 0x0A, '9'},   {11, 0x0B, '0'},   {12, 0x0C, 0xBD},  {13, 0x0D, 0xBB},  // - =
    {14, 0x0E, 0x08},  {15, 0x0F, 0x09},                                        // backspace tab
    {16, 0x10, 'Q'},   {17, 0x11, 'W'},   {18, 0x12, 'E'},   {19, 0x13, 'R'},   //
    {20, 0x14, 'T'},   {21, 0x15, 'Y'},   {22, 0x16, 'U'},   {23, 0x17, 'I'},   //
    {24, 0x18, 'O'},   {25, 0x19, 'P'},   {26, 0x1A, 0xDB},  {27, 0x1B, 0xDD},  // [ ]
    {28, 0x1C, 0x0D},  {29, 0x1D, 0x11},                                        // enter, control
    {30, 0x1E, 'A'},   {31, 0x1F, 'S'},   {32, 0x20, 'D'},   {33, 0x21, 'F'},   //
    {34, 0x22, 'G'},   {35, 0x23, 'H'},   {36, 0x24, 'J'},   {37, 0x25, 'K'},   //
    {38, 0x26, 'L'},   {39, 0x27, 0xBA},  {40, 0x28, 0xDE},  {41, 0x29, 0xC0},  // ; ' `
    {42, 0x2A, 0x10},  {43, 0x2B, 0xDC},                                        // shift, backslash
    {44, 0x2C, 'Z'},   {45, 0x2D, 'X'},   {46, 0x2E, 'C'},   {47, 0x2F, 'V'},   //
    {48, 0x30, 'B'},   {49, 0x31, 'N'},   {50, 0x32, 'M'},                      //
    {51, 0x33, 0xBC},  {52, 0x34, 0xBE},  {53, 0x35, 0xBF},  {54, 0x36, 0x10},  // , . / shift
    {55, 0x37, 0x6A},  {56, 0x38, 0x12},  {57, 0x39, 0x20},  {58, 0x3A, 0x14},  // * alt space caps
    {59, 0x3B, 0x70},  {60, 0x3C, 0x71},  {61, 0x3D, 0x72},  {62, 0x3E, 0x73},  // F1
    {63, 0x3F, 0x74},  {64, 0x40, 0x75},  {65, 0x41, 0x76},  {66, 0x42, 0x77},  //
    {67, 0x43, 0x78},  {68, 0x44, 0x79},  {69, 0xC5, 0x90},  {70, 0x46, 0x91},  // num, scroll
    {71, 0x47, 0x24},  {72, 0x48, 0x26},  {73, 0x49, 0x21},  {74, 0x4A, 0x6D},  // keypad 789-
    {75, 0x4B, 0x25},  {76, 0x4C, 0x0C},  {77, 0x4D, 0x27},  {78, 0x4E, 0x6B},  // 456+
    {79, 0x4F, 0x23},  {80, 0x50, 0x28},  {81, 0x51, 0x22},                     // 123
    {82, 0x52, 0x2D},  {83, 0x53, 0x2E},                                        // 0.
    {86, 0x56, 0xE2},  {87, 0x57, 0x7A},  {88, 0x58, 0x7B},                     // <> F11 F12
    {89, 0x73, 0xC1},  {92, 0xF0, 0x1C},  {93, 0xF9, 0x15},  {94, 0xFA, 0x1D},  // Japanese
    {96, 0x9C, 0x0D},  {97, 0x9D, 0x11},  {98, 0xB5, 0x6F},  {99, 0xB7, 0x2C},  // print
    {100, 0xB8, 0x12}, {102, 0xC7, 0x24}, {103, 0xC8, 0x26}, {104, 0xC9, 0x21}, // home
    {105, 0xCB, 0x25}, {106, 0xCD, 0x27}, {107, 0xCF, 0x23}, {108, 0xD0, 0x28}, // left
    {109, 0xD1, 0x22}, {110, 0xD2, 0x2D}, {111, 0xD3, 0x2E},                    // insert, delete
    {113, 0xA0, 0xAD}, {114, 0xAE, 0xAE}, {115, 0xB0, 0xAF},                    // volume
    {119, 0x45, 0x13}, {121, 0x7E, 0xC2}, {123, 0xFB, 0x19}, {124, 0xFC, 0xDC}, // pause, yen
    {125, 0xDB, 0x5B}, {126, 0xDC, 0x5C}, {127, 0xDD, 0x5D},                    // logo, menu
    {158, 0xEA, 0xA6}, {159, 0xE9, 0xA7}, {163, 0x99, 0xB0}, {164, 0xA2, 0xB3}, // media
    {165, 0x90, 0xB1}, {166, 0xA4, 0xB2}, {172, 0xB2, 0xAC}, {173, 0xE7, 0xA8}, //
    {183, 0x64, 0x7C}, {184, 0x65, 0x7D}, {185, 0x66, 0x7E}, {186, 0x67, 0x7F}, // F13
    {187, 0x68, 0x80}, {188, 0x69, 0x81}, {189, 0x6A, 0x82}, {190, 0x6B, 0x83}, //
    {191, 0x6C, 0x84}, {192, 0x6D, 0x85}, {193, 0x6E, 0x86}, {194, 0x76, 0x87}, // F24
};

constexpr std::uint8_t kKeypadFirst = 71;
constexpr std::uint8_t kKeypadLast = 83;
// Of the keys from keypad 7 on, with Num Lock.
constexpr std::uint8_t kNumpadKeys[] = {0x67, 0x68, 0x69, 0,    0x64, 0x65, 0x66,
                                        0,    0x61, 0x62, 0x63, 0x60, 0x6E};
constexpr std::uint8_t kOemComma = 0xBC;
constexpr std::uint8_t kOemPeriod = 0xBE;

// Signs that have a virtual key wherever a layout puts them.
constexpr struct {
    xkb_keysym_t symbol;
    std::uint8_t vk;
} kSignKeys[] = {
    {XKB_KEY_comma, kOemComma}, {XKB_KEY_period, kOemPeriod}, {XKB_KEY_minus, 0xBD},
    {XKB_KEY_plus, 0xBB},       {XKB_KEY_colon, 0xBF},        {XKB_KEY_exclam, 0xDF},
};

bool isLetterKey(std::uint8_t vk) {
    return vk >= 'A' && vk <= 'Z';
}

bool isTypingKey(const XKey& key) {
    return key.vk >= 0xBA || isLetterKey(key.vk);
}

} // namespace

XKeys allXKeys() {
    return {std::begin(kXKeys), std::end(kXKeys)};
}

const XKey* findXKey(xkb_keycode_t keycode) {
    return findXKeyIf(
        [&](const XKey& key) { return key.code + kXKeycodeOffset == static_cast<int>(keycode); });
}

std::uint32_t virtualKeyOf(const XKey& key, xkb_keysym_t symbol) {
    if (!isTypingKey(key))
        return key.vk;
    if (symbol >= XKB_KEY_a && symbol <= XKB_KEY_z)
        return symbol - XKB_KEY_a + 'A';
    if (symbol == XKB_KEY_semicolon && key.vk == kOemComma)
        return kOemPeriod;
    const auto* const sign = std::find_if(std::begin(kSignKeys), std::end(kSignKeys),
                                          [&](const auto& row) { return row.symbol == symbol; });
    return sign == std::end(kSignKeys) ? key.vk : sign->vk;
}

std::uint32_t numpadKeyOf(const XKey& key) {
    return key.code < kKeypadFirst || key.code > kKeypadLast ? 0
                                                             : kNumpadKeys[key.code - kKeypadFirst];
}

} // namespace orbelantine
