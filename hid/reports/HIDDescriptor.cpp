#include "hid/reports/HIDDescriptor.h"

namespace orbelantine {

// A fixed value: it has neither reports 3 to 6 nor a count that fits the mouse's three axes, and it
// stays so, whatever reports are sent.
// clang-format off
const std::array<std::uint8_t, kHidReportDescriptorSize> kHidReportDescriptor = {
    0x05, 0x01, // usage page: generic desktop
    0x09, 0x02, // usage: mouse
    0xA1, 0x01, // collection: application
    0x85, 0x01, //   report id 1
    0x09, 0x01, //   usage: pointer
    0xA1, 0x00, //   collection: physical
    0x05, 0x09, //     usage page: buttons
    0x19, 0x01, //     usage minimum: button 1
    0x29, 0x03, //     usage maximum: button 3
    0x15, 0x00, //     logical minimum 0
    0x25, 0x01, //     logical maximum 1
    0x75, 0x01, //     report size 1
    0x95, 0x03, //     report count 3
    0x81, 0x02, //     input: data, variable, absolute
    0x75, 0x05, //     report size 5
    0x95, 0x01, //     report count 1
    0x81, 0x01, //     input: constant
    0x05, 0x01, //     usage page: generic desktop
    0x09, 0x30, //     usage: x
    0x09, 0x31, //     usage: y
    0x09, 0x38, //     usage: wheel
    0x15, 0x81, //     logical minimum -127
    0x25, 0x7F, //     logical maximum 127
    0x75, 0x08, //     report size 8
    0x95, 0x02, //     report count 2
    0x81, 0x06, //     input: data, variable, relative
    0xC0,       //   end of collection
    0xC0,       // end of collection
    0x05, 0x01, // usage page: generic desktop
    0x09, 0x06, // usage: keyboard
    0xA1, 0x01, // collection: application
    0x85, 0x02, //   report id 2
    0xA1, 0x00, //   collection: physical
    0x05, 0x07, //     usage page: keyboard
    0x19, 0xE0, //     usage minimum: left control
    0x29, 0xE7, //     usage maximum: right logo key
    0x15, 0x00, //     logical minimum 0
    0x25, 0x01, //     logical maximum 1
    0x75, 0x01, //     report size 1
    0x95, 0x08, //     report count 8
    0x81, 0x02, //     input: data, variable, absolute
    0x95, 0x08, //     report count 8
    0x75, 0x08, //     report size 8
    0x15, 0x00, //     logical minimum 0
    0x25, 0x65, //     logical maximum 101
    0x05, 0x07, //     usage page: keyboard
    0x19, 0x00, //     usage minimum: none
    0x29, 0x65, //     usage maximum: application
    0x81, 0x00, //     input: data, array
    0xC0,       //   end of collection
    0xC0,       // end of collection
};
// clang-format on

} // namespace orbelantine
