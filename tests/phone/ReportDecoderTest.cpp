#include "tools/virtual_phone/ReportDecoder.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace orbelantine::phone {

namespace {

using Bytes = std::vector<std::uint8_t>;

/// One valid report of each kind, by its place in Report.
const std::vector<Bytes>& validReports() {
    static const std::vector<Bytes> reports = {
        {0xA1, 1, 0x05, 0x34, 0x12, 0xFF, 0xFF, 0x88, 0xFF},
        {0xA1, 2, 0x02, 0, 225, 4, 0, 0, 0, 29},
        {0xA1, 3, 0x21, 0xFF, 0xFF, 0x00, 0x80, 1, 0},
        {0xA1, 3,    1,    0,    0x01, 0x02, 0, 0,    0x03, 0x04, 0,
         0,    0xFF, 0x0F, 0xFF, 0x0F, 0,    0, 0x05, 0x06, 1},
        {0xA1, 4, 0x23, 0x02, 0, 0},
        {0xA1, 6, 129},
    };
    return reports;
}

const char* reasonFor(const Bytes& bytes) {
    const Report report = decodeReport(bytes);
    const auto* malformed = std::get_if<Malformed>(&report);
    return malformed == nullptr ? "" : malformed->reason;
}

} // namespace

TEST(ReportDecoder, MouseReportHasSignedDeltasAndButtons) {
    EXPECT_EQ(std::get<MouseReport>(decodeReport(validReports()[0])),
              (MouseReport{.buttons = 5, .dx = 0x1234, .dy = -1, .wheel = -120}));
}

TEST(ReportDecoder, KeyboardReportHasModifiersAndSixPlaces) {
    EXPECT_EQ(std::get<KeyboardReport>(decodeReport(validReports()[1])),
              (KeyboardReport{.modifiers = 2, .keys = {225, 4, 0, 0, 0, 29}}));
}

TEST(ReportDecoder, ReportThreeIsToldApartByItsSize) {
    EXPECT_EQ(std::get<AbsoluteMouseReport>(decodeReport(validReports()[2])),
              (AbsoluteMouseReport{.tip = true, .x = 65535, .y = 0x8000}));
    EXPECT_EQ(std::get<DigitizerReport>(decodeReport(validReports()[3])),
              (DigitizerReport{.tip = true, .x = 0x0201, .y = 0x0403, .scanCounter = 0x0605}));
}

TEST(ReportDecoder, BothConsumerReportsKeepTheirId) {
    EXPECT_EQ(std::get<ConsumerReport>(decodeReport(validReports()[4])),
              (ConsumerReport{.reportId = 4, .usage = 547}));
    EXPECT_EQ(std::get<ConsumerReport>(decodeReport(Bytes{0xA1, 5, 48, 0, 0, 0})),
              (ConsumerReport{.reportId = 5, .usage = 48}));
}

TEST(ReportDecoder, SystemReportIsOneByte) {
    EXPECT_EQ(std::get<SystemReport>(decodeReport(validReports()[5])), (SystemReport{.code = 129}));
}

TEST(ReportDecoder, OneByteMoreOrLessIsMalformed) {
    for (const Bytes& valid : validReports()) {
        Bytes longer = valid;
        longer.push_back(0);
        EXPECT_STREQ(reasonFor(longer), "a report has not the size of its id");
        const Bytes shorter(valid.begin(), valid.end() - 1);
        EXPECT_STRNE(reasonFor(shorter), "") << "report " << int{valid[1]};
    }
}

TEST(ReportDecoder, HeaderMustBeThatOfAnInputReport) {
    EXPECT_STREQ(reasonFor({}), "a report is shorter than its two header bytes");
    EXPECT_STREQ(reasonFor({0xA1}), "a report is shorter than its two header bytes");
    EXPECT_STREQ(reasonFor({0xA2, 6, 0}), "a report does not begin with 0xA1");
    EXPECT_STREQ(reasonFor({0xA1, 7, 0}), "a report has an unknown id");
    EXPECT_STREQ(reasonFor({0xA1, 0, 0}), "a report has an unknown id");
}

TEST(ReportDecoder, FixedFieldsMustHoldTheirValue) {
    struct FixedByte {
        std::size_t report;
        std::size_t at;
    };

    const FixedByte fixed[] = {{1, 3},  {2, 2},  {2, 7},  {2, 8},  {3, 2},  {3, 3},  {3, 6},
                               {3, 7},  {3, 10}, {3, 11}, {3, 12}, {3, 13}, {3, 14}, {3, 15},
                               {3, 16}, {3, 17}, {3, 20}, {4, 4},  {4, 5}};
    for (const auto& [report, at] : fixed) {
        Bytes bytes = validReports()[report];
        bytes[at] ^= 0x40;
        EXPECT_STRNE(reasonFor(bytes), "") << kReportNames[report] << ", byte " << at;
    }
}

TEST(ReportDecoder, RandomBytesDecodeOnlyAtTheSizeOfTheirId) {
    std::mt19937 random(20230817);
    int decoded = 0;
    for (int i = 0; i < 200'000; ++i) {
        Bytes bytes(random() % 24);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        if (bytes.size() >= 2) {
            bytes[0] = 0xA1;
            bytes[1] %= 8;
        }
        const Report report = decodeReport(bytes);
        if (std::holds_alternative<Malformed>(report))
            continue;
        ++decoded;
        EXPECT_EQ(bytes.size(), validReports()[report.index()].size());
    }
    EXPECT_GT(decoded, 1000);
}

} // namespace orbelantine::phone
