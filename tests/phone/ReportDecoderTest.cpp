#include "tools/virtual_phone/phone/ReportDecoder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orbelantine::phone {

namespace {

using Bytes = std::vector<std::uint8_t>;

/// One valid report of each kind, by its place in Report.
const std::vector<Bytes> kReports = {
    {0xA1, 1, 0x05, 0x34, 0x12, 0xFF, 0xFF, 0x88, 0xFF},
    {0xA1, 2, 0x02, 0, 225, 4, 0, 0, 0, 29},
    {0xA1, 3, 0x21, 0xFF, 0xFF, 0x00, 0x80, 1, 0},
    {0xA1, 3,    1,    0,    0x01, 0x02, 0, 0,    0x03, 0x04, 0,
     0,    0xFF, 0x0F, 0xFF, 0x0F, 0,    0, 0x05, 0x06, 1},
    {0xA1, 4, 0x23, 0x02, 0, 0},
    {0xA1, 6, 129},
};

template <class Kind>
void expectDecoded(const Bytes& bytes, const Kind& expected) {
    EXPECT_EQ(std::get<Kind>(decodeReport(bytes)), expected);
}

std::string reasonFor(const Bytes& bytes) {
    const Report report = decodeReport(bytes);
    const auto* malformed = std::get_if<Malformed>(&report);
    return malformed == nullptr ? "" : malformed->reason;
}

} // namespace

TEST(ReportDecoder, EachKindOfReportHasItsFields) {
    expectDecoded(kReports[0], MouseReport{.buttons = 5, .dx = 0x1234, .dy = -1, .wheel = -120});
    expectDecoded(kReports[1], KeyboardReport{.modifiers = 2, .keys = {225, 4, 0, 0, 0, 29}});
    expectDecoded(kReports[2], AbsoluteMouseReport{.tip = true, .x = 65535, .y = 0x8000});
    expectDecoded(kReports[3],
                  DigitizerReport{.tip = true, .x = 0x0201, .y = 0x0403, .scanCounter = 0x0605});
    expectDecoded(kReports[4], ConsumerReport{.reportId = 4, .usage = 547});
    expectDecoded({0xA1, 5, 48, 0, 0, 0}, ConsumerReport{.reportId = 5, .usage = 48});
    expectDecoded(kReports[5], SystemReport{.code = 129});
}

TEST(ReportDecoder, OneByteMoreOrLessIsMalformed) {
    for (const Bytes& valid : kReports) {
        Bytes longer = valid;
        longer.push_back(0);
        EXPECT_EQ(reasonFor(longer), "a report has not the size of its id");
        const Bytes shorter(valid.begin(), valid.end() - 1);
        EXPECT_NE(reasonFor(shorter), "") << "report " << int{valid[1]};
    }
}

TEST(ReportDecoder, HeaderMustBeThatOfAnInputReport) {
    EXPECT_EQ(reasonFor({}), "a report is shorter than its two header bytes");
    EXPECT_EQ(reasonFor({0xA1}), "a report is shorter than its two header bytes");
    EXPECT_EQ(reasonFor({0xA2, 6, 0}), "a report does not begin with 0xA1");
    EXPECT_EQ(reasonFor({0xA1, 7, 0}), "a report has an unknown id");
    EXPECT_EQ(reasonFor({0xA1, 0, 0}), "a report has an unknown id");
}

TEST(ReportDecoder, FixedFieldsMustHoldTheirValue) {
    const std::vector<std::vector<std::size_t>> fixed = {
        {}, {3}, {2, 7, 8}, {2, 3, 6, 7, 10, 11, 12, 13, 14, 15, 16, 17, 20}, {4, 5}, {}};
    for (std::size_t kind = 0; kind < fixed.size(); ++kind)
        for (const std::size_t place : fixed[kind]) {
            Bytes bytes = kReports[kind];
            bytes[place] ^= 0x40;
            EXPECT_NE(reasonFor(bytes), "") << kReportNames[kind] << ", byte " << place;
        }
}

} // namespace orbelantine::phone
