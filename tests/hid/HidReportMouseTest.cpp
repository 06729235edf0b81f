#include "avstack/RawMediaBuffer.h"
#include "tests/hid/HidReportFixture.h"

namespace orbelantine {

namespace {

using test::Bytes;

class HidReportMouse : public test::HidReportFixture {};

TEST_F(HidReportMouse, RelativeReportHasTheLow16BitsOfAMoveOrOfTheWheelWhateverTheirOrder) {
    EXPECT_EQ(mouse(kRelative, 0, -2, 0x12345678),
              (Bytes{0xA1, 1, 0, 0xFE, 0xFF, 0x78, 0x56, 0, 0}));
    EXPECT_EQ(mouse(kRelative, 0, 32767, -32768), (Bytes{0xA1, 1, 0, 0xFF, 0x7F, 0, 0x80, 0, 0}));
    EXPECT_EQ(mouse(kRelative, 5, 7, -120), (Bytes{0xA1, 1, 0, 0, 0, 0, 0, 0x88, 0xFF}));
    EXPECT_EQ(mouse(kRelative, 6, 7, 0x10203), (Bytes{0xA1, 1, 0, 0, 0, 0, 0, 3, 2}));
    EXPECT_EQ(convert(boost::make_shared<IInputMediaBufferMouse>(5, 6, std::uint8_t{0}, true)),
              (Bytes{0xA1, 1, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(HidReportMouse, RelativeButtonsAreHeldUntilReleased) {
    // Unknown events change none.
    const std::vector<std::pair<std::uint8_t, std::uint8_t>> buttonsAfterEvent = {
        {2, 1}, {4, 3}, {8, 7}, {1, 6}, {7, 2}, {9, 2}, {10, 2}, {255, 2}};
    for (const auto& [event, buttons] : buttonsAfterEvent)
        EXPECT_EQ(mouse(kRelative, event, 5, 6), (Bytes{0xA1, 1, buttons, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(mouse(kRelative, 0, 1, 2), (Bytes{0xA1, 1, 2, 1, 0, 2, 0, 0, 0}));
    EXPECT_EQ(mouse(kRelative, 6, 1, 2), (Bytes{0xA1, 1, 2, 0, 0, 0, 0, 2, 0}));
    for (const std::uint8_t release : {3, 1})
        EXPECT_EQ(mouse(kRelative, release, 5, 6), (Bytes{0xA1, 1, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(HidReportMouse, AbsoluteTipFollowsTheLeftButtonAndOtherEventsLiftItForOneReport) {
    EXPECT_EQ(mouse(kAbsolute, 0, 65535, 1), (Bytes{0xA1, 3, 0x21, 0xFF, 0xFF, 1, 0, 0, 0}));
    const std::vector<std::pair<std::uint8_t, std::uint8_t>> tipAfterEvent = {
        {2, 1}, {0, 1}, {3, 0}, {4, 0}, {5, 0}, {6, 0}, {7, 0}, {8, 0}, {9, 0}, {0, 1}, {1, 0}};
    for (const auto& [event, tip] : tipAfterEvent)
        EXPECT_EQ(mouse(kAbsolute, event, 2, 3), (Bytes{0xA1, 3, 0x21, 2, 0, 3, 0, tip, 0}));
    EXPECT_EQ(mouse(kAbsolute, 0, 8, 9), (Bytes{0xA1, 3, 0x21, 8, 0, 9, 0, 0, 0}));
}

TEST_F(HidReportMouse, DigitizerReportsOneContactOfFixedExtentWhoseTipFollowsTheLeftButton) {
    EXPECT_EQ(mouse(kDigitizer, 2, 0x1234, 0x5678),
              (Bytes{0xA1, 3,    1,    0,    0x34, 0x12, 0, 0, 0x78, 0x56, 0,
                     0,    0xFF, 0x0F, 0xFF, 0x0F, 0,    0, 0, 0,    1}));
    const std::vector<std::pair<std::uint8_t, std::uint8_t>> tipAfterEvent = {
        {0, 1}, {4, 0}, {0, 1}, {1, 0}, {0, 0}};
    for (const auto& [event, tip] : tipAfterEvent)
        EXPECT_EQ(mouse(kDigitizer, event).at(2), tip);
}

TEST_F(HidReportMouse, DigitizerCountsItsReportsAndWraps) {
    const auto counter = [this] {
        const Bytes bytes = mouse(kDigitizer, 0);
        return bytes.at(18) | bytes.at(19) << 8;
    };
    EXPECT_EQ(counter(), 0);
    mouse(kAbsolute, 0);
    EXPECT_EQ(counter(), 1);
    state.scanCounter = 65535;
    EXPECT_EQ(counter(), 65535);
    EXPECT_EQ(counter(), 0);
}

TEST_F(HidReportMouse, OtherModesGiveNoReportAndAClearedRecordAndKeepTheState) {
    mouse(kRelative, IInputMediaBufferMouse::LeftDown);
    for (const std::uint32_t mode : {3U, 4U, 0xFFFFFFFFU})
        EXPECT_EQ(mouse(mode, IInputMediaBufferMouse::RightDown), Bytes());
    EXPECT_EQ(state.mouseButtons, 1);
    EXPECT_EQ(report.data, nullptr);
    EXPECT_EQ(report.size, 0U);
    EXPECT_EQ(report.bytes, (std::array<std::uint8_t, 24>{}));
}

/// A buffer as a host makes one: its memory has the raw layout and nothing else is native.
boost::shared_ptr<IMediaBuffer> hostBuffer(std::uint8_t type, Bytes& payload) {
    return boost::make_shared<RawMediaBuffer>(type, static_cast<std::uint32_t>(payload.size()),
                                              std::uint64_t{0}, payload.data(), false);
}

TEST_F(HidReportMouse, HostBuffersAreReadByTheRawLayoutIfOfAKnownTypeAndWhole) {
    const struct {
        std::uint8_t type;
        Bytes payload;
        Bytes converted;
    } buffers[] = {
        {10,
         {5, 0, 0, 0, 6, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
         {0xA1, 1, 0, 5, 0, 6, 0, 0, 0}},
        {9, {30, 0, 0, 0, 0, 0, 0, 0}, {0xA1, 2, 0, 0, 4, 0, 0, 0, 0, 0}},
        {9, Bytes(0), {}},
        {9, Bytes(7), {}},
        {10, Bytes(0), {}},
        {10, Bytes(19), {}},
        {0, Bytes(20), {}},
        {8, Bytes(20), {}},
        {11, Bytes(20), {}},
        {28, Bytes(20), {}},
    };

    for (auto [type, payload, converted] : buffers)
        EXPECT_EQ(convert(hostBuffer(type, payload)), converted)
            << int{type} << ' ' << payload.size();
    EXPECT_EQ(convert(boost::make_shared<RawMediaBuffer>(std::uint8_t{10}, 20U, std::uint64_t{0},
                                                         nullptr, false)),
              Bytes());
    EXPECT_EQ(convert(nullptr), Bytes());
}

} // namespace

} // namespace orbelantine
