#include "hid/HIDDescriptor.h"

#include <boost/algorithm/hex.hpp>
#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine {

namespace {

TEST(HidDescriptor, BytesAreFixed) {
    const std::string expected =
        "05010902A10185010901A100050919012903150025017501950381027505950181010501093009310938158125"
        "7F"
        "750895028106C0C005010906A1018502A100050719E029E71500250175019508810295087508150025650507"
        "190029658100C0C0";
    std::string actual;
    boost::algorithm::hex(kHidReportDescriptor.begin(), kHidReportDescriptor.end(),
                          std::back_inserter(actual));
    EXPECT_EQ(actual, expected);
}

/// The bits of input that each report id has, by the items' own lengths, sizes and counts.
std::map<unsigned, unsigned> inputBitsByReport(int& openCollections) {
    std::map<unsigned, unsigned> bits;
    unsigned id = 0;
    unsigned size = 0;
    unsigned count = 0;
    for (std::size_t i = 0; i < kHidReportDescriptor.size();) {
        const unsigned item = kHidReportDescriptor.at(i);
        const bool hasData = (item & 3U) != 0;
        const unsigned value = hasData ? kHidReportDescriptor.at(i + 1) : 0;
        i += hasData ? 2 : 1;
        switch (item) {
        case 0x85:
            id = value;
            break;
        case 0x75:
            size = value;
            break;
        case 0x95:
            count = value;
            break;
        case 0x81:
            bits[id] += size * count;
            break;
        case 0xA1:
            ++openCollections;
            break;
        case 0xC0:
            --openCollections;
            break;
        default:
            break;
        }
    }
    return bits;
}

TEST(HidDescriptor, DescribesAMouseOfThreeBytesAndAKeyboardOfNine) {
    int openCollections = 0;
    const auto bits = inputBitsByReport(openCollections);
    EXPECT_EQ(bits, (std::map<unsigned, unsigned>{{1, 24}, {2, 72}}));
    EXPECT_EQ(openCollections, 0);
}

TEST(HidDescriptor, RecordIsNamedForThePhone) {
    EXPECT_STREQ(kHidServiceName, "OrbelantineHIDDevice");
    EXPECT_STREQ(kHidServiceDescription, "Provides HID, Keyboard and mouse");
    EXPECT_STREQ(kHidProviderName, "Orbelantine");
    EXPECT_EQ(kHidSubclass, 64);
    EXPECT_EQ(kHidReportDescriptorSize, 98U);
}

} // namespace

} // namespace orbelantine
