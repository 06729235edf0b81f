#include "hid/reports/HIDReportLayout.h"

#include <boost/endian/conversion.hpp>

#include <algorithm>

namespace orbelantine {

namespace {

// Every report:  | A1 | id | ...
std::uint8_t* begin(HIDReport& report, HIDReportId id, std::size_t size) {
    report.data = report.bytes.data();
    report.size = size;
    report.bytes[0] = kInputTransaction;
    report.bytes[1] = id;
    return report.bytes.data();
}

void store16(std::uint8_t* place, std::int32_t value) {
    boost::endian::store_little_u16(place, static_cast<std::uint16_t>(value));
}

} // namespace

//   0    1    2         3   4   5   6   7   8
// | A1 | 01 | buttons |   x   |   y   | wheel |
//
// buttons: bit 0 left, bit 1 right, bit 2 middle
void writeRelativeMouse(HIDReport& report, std::uint8_t buttons, std::int32_t x, std::int32_t y,
                        std::int32_t wheel) {
    std::uint8_t* const bytes = begin(report, kReportRelativeMouse, 9);
    bytes[2] = buttons;
    store16(bytes + 3, x);
    store16(bytes + 5, y);
    store16(bytes + 7, wheel);
}

//   0    1    2    3   4   5   6   7   8
// | A1 | 03 | 21 |   x   |   y   |  tip  |
void writeAbsoluteMouse(HIDReport& report, bool tip, std::int32_t x, std::int32_t y) {
    constexpr std::uint8_t kFlags = 0x21;
    std::uint8_t* const bytes = begin(report, kReportPointer, 9);
    bytes[2] = kFlags;
    store16(bytes + 3, x);
    store16(bytes + 5, y);
    store16(bytes + 7, tip ? 1 : 0);
}

//   0    1    2     3    4   5   6    8   9   10   12  13  14  15  16   18  19  20
// | A1 | 03 | tip | 00 |   x   | 00 |   y   | 00 | width | height | 00 | scan  | 01 |
//
// The reserved fields at 6, 10 and 16 have two bytes; the last byte is the number of contacts.
void writeDigitizer(HIDReport& report, bool tip, std::int32_t x, std::int32_t y,
                    std::uint16_t scanCounter) {
    constexpr std::int32_t kContactExtent = 0x0FFF;
    constexpr std::uint8_t kContacts = 1;
    std::uint8_t* const bytes = begin(report, kReportPointer, 21);
    bytes[2] = tip ? 1 : 0;
    store16(bytes + 4, x);
    store16(bytes + 8, y);
    store16(bytes + 12, kContactExtent);
    store16(bytes + 14, kContactExtent);
    store16(bytes + 18, scanCounter);
    bytes[20] = kContacts;
}

//   0    1    2           3    4      5      6      7      8      9
// | A1 | 02 | modifiers | 00 | key0 | key1 | key2 | key3 | key4 | key5 |
//
// modifiers: bit 0 left control, 1 left shift, 2 left alt, 3 left logo, 4 to 7 the right ones
void writeKeyboard(HIDReport& report, std::uint8_t modifiers,
                   const std::array<std::uint8_t, 6>& keys) {
    std::uint8_t* const bytes = begin(report, kReportKeyboard, 10);
    bytes[2] = modifiers;
    std::copy(keys.begin(), keys.end(), bytes + 4);
}

//   0    1    2   3   4    5
// | A1 | id | usage | 00 | 00 |
void writeConsumerControl(HIDReport& report, HIDReportId id, std::uint16_t usage) {
    std::uint8_t* const bytes = begin(report, id, 6);
    store16(bytes + 2, usage);
}

//   0    1    2
// | A1 | 06 | code |
void writeSystemControl(HIDReport& report, std::uint8_t code) {
    std::uint8_t* const bytes = begin(report, kReportSystemControl, 3);
    bytes[2] = code;
}

} // namespace orbelantine
