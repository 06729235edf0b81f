#include "hid/reports/WindowsHIDKeyTranslator.h"

#include "core/common/OSAL.h"
#include "core/common/config/KVStore.h"
#include "core/common/log/Log.h"

#include <boost/smart_ptr/make_shared_array.hpp>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace orbelantine {

namespace {

constexpr std::size_t kTableSize = 256;

struct Mapping {
    std::uint8_t index;
    std::uint16_t code;
};

// Indices are scan codes of set 1, with bit 7 set for those that a keyboard sends after 0xE0; codes
// are usages of the USB HID Usage Tables' keyboard page.

// The codes from 0 on, without a gap.
constexpr std::uint8_t kBaseKeys[] = {
    0,                                       //   0  none
    41,                                      //   1  escape
    30,  31, 32, 33, 34, 35, 36, 37, 38, 39, //   2  1 to 9, 0
    45,  46, 42,                             //  12  - = backspace
    43,                                      //  15  tab
    20,  26, 8,  21, 23, 28, 24, 12, 18, 19, //  16  q to p
    47,  48, 40,                             //  26  [ ] enter
    224,                                     //  29  left control
    4,   22, 7,  9,  10, 11, 13, 14, 15,     //  30  a to l
    51,  52, 53,                             //  39  ; ' `
    225,                                     //  42  left shift
    49,                                      //  43  backslash
    29,  27, 6,  25, 5,  17, 16,             //  44  z to m
    54,  55, 56,                             //  51  , . /
    229,                                     //  54  right shift
    85,                                      //  55  keypad *
    226,                                     //  56  left alt
    44,                                      //  57  space
    57,                                      //  58  caps lock
    58,  59, 60, 61, 62, 63, 64, 65, 66, 67, //  59  F1 to F10
    72,                                      //  69  pause
    71,                                      //  70  scroll lock
    95,  96, 97, 86,                         //  71  keypad 7 8 9 -
    92,  93, 94, 87,                         //  75  keypad 4 5 6 +
    89,  90, 91,                             //  79  keypad 1 2 3
    98,  99,                                 //  82  keypad 0 .
};

constexpr Mapping kFurtherKeys[] = {
    {86, 100},  // beside left shift
    {87, 68},   // F11
    {88, 69},   // F12
    {157, 228}, // right control
    {160, 239}, // mute
    {162, 232}, // play or pause
    {174, 238}, // volume down
    {176, 237}, // volume up
    {181, 84},  // keypad /
    {184, 230}, // right alt
    {197, 83},  // num lock
    {199, 74},  // home
    {200, 82},  // up
    {201, 75},  // page up
    {203, 80},  // left
    {205, 79},  // right
    {207, 77},  // end
    {208, 81},  // down
    {209, 78},  // page down
    {210, 73},  // insert
    {211, 76},  // delete
    {219, 227}, // left logo key
    {220, 231}, // right logo key
    {221, 101}, // application
    {240, 138}, // international 4
    {249, 136}, // international 2
    {250, 139}, // international 5
    {251, 145}, // language 2
    {252, 137}, // international 3
};

// The control keys act as an Apple keyboard's command keys.
constexpr Mapping kAppleKeys[] = {{29, 227}, {157, 231}};

// Indices are Windows virtual key codes.
constexpr Mapping kMediaKeys[] = {
    {166, 241}, // browser back
    {167, 242}, // browser forward
    {168, 250}, // browser refresh
    {169, 243}, // browser stop
    {172, 240}, // browser home
    {173, 239}, // volume mute
    {174, 238}, // volume down
    {175, 237}, // volume up
    {176, 235}, // next track
    {177, 234}, // previous track
    {178, 233}, // stop
    {179, 232}, // play or pause
};

// Usages of the consumer page.
constexpr Mapping kConsumerKeys[] = {
    {170, 418}, // all applications
    {175, 48},  // power
    {199, 547}, // home
};
constexpr Mapping kAppleConsumerKeys[] = {
    {170, 545}, // search
    {175, 184}, // eject
    {199, 547}, // home
    {253, 48},  // power
};

// System control usages of the generic desktop page.
constexpr Mapping kSystemControlKeys[] = {
    {253, 129}, // power down
    {254, 130}, // sleep
    {255, 131}, // wake up
};

boost::shared_ptr<std::uint32_t[]> makeEmptyTable() {
    return boost::make_shared<std::uint32_t[]>(kTableSize, kNoTranslation);
}

template <std::size_t N>
void write(const boost::shared_ptr<std::uint32_t[]>& table, const Mapping (&mappings)[N]) {
    for (const Mapping& mapping : mappings)
        table[mapping.index] = mapping.code;
}

} // namespace

WindowsHIDKeyTranslator::WindowsHIDKeyTranslator(const KVStore& configuration)
    : mKeys(makeEmptyTable())
    , mVirtualKeys(makeEmptyTable())
    , mConsumerKeys(makeEmptyTable())
    , mSystemControlKeys(makeEmptyTable()) {
    ORB_TRACED();
    // Reading a store writes its defaults, so it is done on a copy.
    KVStore values(configuration);
    const bool apple = values.getBoolAt("apple", false);
    buildKeyMaps(apple);
    buildConsumerKeyMap(apple);
    buildSystemControlKeyMap(apple);
}

HIDTypes::eUSBHIDKeyCodes WindowsHIDKeyTranslator::translateScanCode(std::int32_t index) {
    return static_cast<HIDTypes::eUSBHIDKeyCodes>(mKeys[index]);
}

HIDTypes::eUSBHIDKeyCodes WindowsHIDKeyTranslator::translateVirtualKey(std::int32_t index) {
    return static_cast<HIDTypes::eUSBHIDKeyCodes>(mVirtualKeys[index]);
}

BluetoothHIDClientTypes::eUSBHIDConsumerKeyCodes
WindowsHIDKeyTranslator::translateConsumerKey(std::int32_t index) {
    return static_cast<BluetoothHIDClientTypes::eUSBHIDConsumerKeyCodes>(mConsumerKeys[index]);
}

BluetoothHIDClientTypes::eUSBHIDSystemControlKeyCodes
WindowsHIDKeyTranslator::translateSystemControlKey(std::int32_t index) {
    return static_cast<BluetoothHIDClientTypes::eUSBHIDSystemControlKeyCodes>(
        mSystemControlKeys[index]);
}

void WindowsHIDKeyTranslator::buildKeyMaps(bool apple) {
    std::copy(std::begin(kBaseKeys), std::end(kBaseKeys), mKeys.get());
    write(mKeys, kFurtherKeys);
    if (apple)
        write(mKeys, kAppleKeys);
    write(mVirtualKeys, kMediaKeys);
}

void WindowsHIDKeyTranslator::buildConsumerKeyMap(bool apple) {
    if (apple)
        write(mConsumerKeys, kAppleConsumerKeys);
    else
        write(mConsumerKeys, kConsumerKeys);
}

void WindowsHIDKeyTranslator::buildSystemControlKeyMap(bool apple) {
    if (!apple)
        write(mSystemControlKeys, kSystemControlKeys);
}

ORB_OSAL_REGISTER(IHIDKeyTranslator, WindowsHIDKeyTranslator, "WindowsHIDKeyTranslator");

} // namespace orbelantine
