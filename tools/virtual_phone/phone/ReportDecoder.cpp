#include "tools/virtual_phone/phone/ReportDecoder.h"

#include <boost/endian/conversion.hpp>

#include <algorithm>

namespace orbelantine::phone {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t kInputReport = 0xA1;
constexpr std::uint8_t kAbsoluteFlags = 0x21;
constexpr std::uint16_t kContactSize = 0x0FFF;

std::uint16_t u16(Bytes bytes, std::size_t at) {
    return boost::endian::load_little_u16(&bytes[at]);
}

std::int16_t s16(Bytes bytes, std::size_t at) {
    return boost::endian::load_little_s16(&bytes[at]);
}

//  2        3   4   5   6   7   8
//  buttons  x (s16) y (s16) wheel (s16)
Report decodeMouse(Bytes bytes) {
    return MouseReport{
        .buttons = bytes[2], .dx = s16(bytes, 3), .dy = s16(bytes, 5), .wheel = s16(bytes, 7)};
}

//  2          3  4 .. 9
//  modifiers  0  keys
Report decodeKeyboard(Bytes bytes) {
    if (bytes[3] != 0)
        return Malformed{"the reserved byte of a keyboard report is not 0"};
    KeyboardReport report{.modifiers = bytes[2]};
    std::copy_n(bytes.begin() + 4, report.keys.size(), report.keys.begin());
    return report;
}

//  2     3   4   5   6   7   8
//  0x21  x (u16) y (u16) tip (u16)
Report decodeAbsoluteMouse(Bytes bytes) {
    if (bytes[2] != kAbsoluteFlags)
        return Malformed{"the flags of an absolute mouse report are not 0x21"};
    const std::uint16_t tip = u16(bytes, 7);
    if (tip > 1)
        return Malformed{"the tip of an absolute mouse report is neither 0 nor 1"};
    return AbsoluteMouseReport{.tip = tip == 1, .x = u16(bytes, 3), .y = u16(bytes, 5)};
}

//  2    3  4   5   6 7  8   9   10 11  12   13   14   15   16 17  18    19    20
//  tip  0  x (u16) 0    y (u16) 0      width     height    0      scan counter contacts
Report decodeDigitizer(Bytes bytes) {
    if (bytes[2] > 1)
        return Malformed{"the tip of a digitizer report is neither 0 nor 1"};
    if (bytes[3] != 0 || u16(bytes, 6) != 0 || u16(bytes, 10) != 0 || u16(bytes, 16) != 0)
        return Malformed{"the reserved bytes of a digitizer report are not 0"};
    if (u16(bytes, 12) != kContactSize || u16(bytes, 14) != kContactSize)
        return Malformed{"the contact of a digitizer report is not 0x0FFF wide and high"};
    if (bytes[20] != 1)
        return Malformed{"the contact count of a digitizer report is not 1"};
    return DigitizerReport{.tip = bytes[2] == 1,
                           .x = u16(bytes, 4),
                           .y = u16(bytes, 8),
                           .scanCounter = u16(bytes, 18)};
}

//  2   3       4 5
//  usage (u16) 0
Report decodeConsumer(Bytes bytes) {
    if (u16(bytes, 4) != 0)
        return Malformed{"the reserved bytes of a consumer report are not 0"};
    return ConsumerReport{.reportId = bytes[1], .usage = u16(bytes, 2)};
}

Report decodeSystem(Bytes bytes) {
    return SystemReport{.code = bytes[2]};
}

struct Layout {
    std::uint8_t id;
    std::size_t size;
    Report (*decode)(Bytes);
};

constexpr Layout kLayouts[] = {
    {1, 9, decodeMouse},      {2, 10, decodeKeyboard}, {3, 9, decodeAbsoluteMouse},
    {3, 21, decodeDigitizer}, {4, 6, decodeConsumer},  {5, 6, decodeConsumer},
    {6, 3, decodeSystem},
};

} // namespace

Report decodeReport(Bytes bytes) {
    if (bytes.size() < 2)
        return Malformed{"a report is shorter than its two header bytes"};
    if (bytes[0] != kInputReport)
        return Malformed{"a report does not begin with 0xA1"};
    const auto hasId = [&](const Layout& layout) { return layout.id == bytes[1]; };
    const auto fits = [&](const Layout& layout) {
        return hasId(layout) && layout.size == bytes.size();
    };
    if (const auto* layout = std::ranges::find_if(kLayouts, fits); layout != std::end(kLayouts))
        return layout->decode(bytes);
    return Malformed{std::ranges::any_of(kLayouts, hasId) ? "a report has not the size of its id"
                                                          : "a report has an unknown id"};
}

} // namespace orbelantine::phone
