#include "tests/hid/HidReportFixture.h"

namespace orbelantine {

namespace {

using test::Bytes;

class HidReportMouse : public test::HidReportFixture {};

TEST_F(HidReportMouse, RelativeLeftPressIsOneBitAndSixZeros) {
    EXPECT_EQ(mouse(kRelative, IInputMediaBufferMouse::LeftDown),
              (Bytes{0xA1, 1, 1, 0, 0, 0, 0, 0, 0}));
}

TEST_F(HidReportMouse, RelativeMoveCarriesTheLow16BitsOfBothAxes) {
    EXPECT_EQ(mouse(kRelative, 0, -2, 0x12345678),
              (Bytes{0xA1, 1, 0, 0xFE, 0xFF, 0x78, 0x56, 0, 0}));
    EXPECT_EQ(mouse(kRelative, 0, 32767, -32768), (Bytes{0xA1, 1, 0, 0xFF, 0x7F, 0, 0x80, 0, 0}));
}

TEST_F(HidReportMouse, RelativeWheelComesFromYInBothDirections) {
    EXPECT_EQ(mouse(kRelative, 5, 7, -120), (Bytes{0xA1, 1, 0, 0, 0, 0, 0, 0x88, 0xFF}));
    EXPECT_EQ(mouse(kRelative, 6, 7, 0x10203), (Bytes{0xA1, 1, 0, 0, 0, 0, 0, 3, 2}));
}

TEST_F(HidReportMouse, RelativeButtonsAreHeldUntilReleased) {
    const std::vector<std::pair<std::uint8_t, std::uint8_t>> buttonsAfterEvent = {
        {2, 1}, {4, 3}, {8, 7}, {1, 6}, {7, 2}, {3, 0}, {1, 0}};
    for (const auto& [event, buttons] : buttonsAfterEvent)
        EXPECT_EQ(mouse(kRelative, event, 5, 6), (Bytes{0xA1, 1, buttons, 0, 0, 0, 0, 0, 0}));
}

TEST_F(HidReportMouse, RelativeMoveAndWheelCarryTheHeldButtons) {
    mouse(kRelative, IInputMediaBufferMouse::RightDown);
    EXPECT_EQ(mouse(kRelative, 0, 1, 2), (Bytes{0xA1, 1, 2, 1, 0, 2, 0, 0, 0}));
    EXPECT_EQ(mouse(kRelative, 6, 1, 2), (Bytes{0xA1, 1, 2, 0, 0, 0, 0, 2, 0}));
}

TEST_F(HidReportMouse, RelativeUnknownEventIsReportedWithoutAChange) {
    mouse(kRelative, IInputMediaBufferMouse::LeftDown);
    for (const std::uint8_t unknown : {9, 10, 255})
        EXPECT_EQ(mouse(kRelative, unknown, 5, 6), (Bytes{0xA1, 1, 1, 0, 0, 0, 0, 0, 0}));
}

TEST_F(HidReportMouse, AbsoluteTipFollowsTheLeftButton) {
    EXPECT_EQ(mouse(kAbsolute, 0, 65535, 1), (Bytes{0xA1, 3, 0x21, 0xFF, 0xFF, 1, 0, 0, 0}));
    EXPECT_EQ(mouse(kAbsolute, 2, 2, 3), (Bytes{0xA1, 3, 0x21, 2, 0, 3, 0, 1, 0}));
    EXPECT_EQ(mouse(kAbsolute, 0, 4, 5), (Bytes{0xA1, 3, 0x21, 4, 0, 5, 0, 1, 0}));
    EXPECT_EQ(mouse(kAbsolute, 1, 6, 7), (Bytes{0xA1, 3, 0x21, 6, 0, 7, 0, 0, 0}));
    EXPECT_EQ(mouse(kAbsolute, 0, 8, 9), (Bytes{0xA1, 3, 0x21, 8, 0, 9, 0, 0, 0}));
}

TEST_F(HidReportMouse, AbsoluteOtherEventsLiftTheTipForOneReport) {
    mouse(kAbsolute, IInputMediaBufferMouse::LeftDown);
    for (std::uint8_t type = 3; type <= 9; ++type)
        EXPECT_EQ(mouse(kAbsolute, type, 2, 3), (Bytes{0xA1, 3, 0x21, 2, 0, 3, 0, 0, 0}));
    EXPECT_EQ(mouse(kAbsolute, 0, 4, 5), (Bytes{0xA1, 3, 0x21, 4, 0, 5, 0, 1, 0}));
}

TEST_F(HidReportMouse, DigitizerReportsOneContactOfFixedExtent) {
    EXPECT_EQ(mouse(kDigitizer, 2, 0x1234, 0x5678),
              (Bytes{0xA1, 3,    1,    0,    0x34, 0x12, 0, 0, 0x78, 0x56, 0,
                     0,    0xFF, 0x0F, 0xFF, 0x0F, 0,    0, 0, 0,    1}));
}

TEST_F(HidReportMouse, DigitizerTipFollowsTheLeftButton) {
    const std::vector<std::pair<std::uint8_t, std::uint8_t>> tipAfterEvent = {
        {0, 0}, {2, 1}, {0, 1}, {4, 0}, {0, 1}, {1, 0}, {0, 0}};
    for (const auto& [event, tip] : tipAfterEvent)
        EXPECT_EQ(mouse(kDigitizer, event).at(2), tip);
}

TEST_F(HidReportMouse, DigitizerCountsItsReportsAndWraps) {
    const auto counter = [this] {
        const Bytes bytes = mouse(kDigitizer, 0);
        return bytes.at(18) | bytes.at(19) << 8;
    };
    EXPECT_EQ(counter(), 0);
    EXPECT_EQ(counter(), 1);
    mouse(kAbsolute, 0);
    EXPECT_EQ(counter(), 2);
    state.scanCounter = 65535;
    EXPECT_EQ(counter(), 65535);
    EXPECT_EQ(counter(), 0);
}

TEST_F(HidReportMouse, IntegersAreTakenAsStoredWhateverTheirOrder) {
    EXPECT_EQ(convert(boost::make_shared<IInputMediaBufferMouse>(5, 6, std::uint8_t{0}, true)),
              (Bytes{0xA1, 1, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(convert(boost::make_shared<IInputMediaBufferMouse>(
                  IInputMediaBufferMouse::EventData{5, 6, 0, 0, 0}, true, std::uint64_t{0})),
              (Bytes{0xA1, 1, 0, 5, 0, 6, 0, 0, 0}));
}

TEST_F(HidReportMouse, OtherModesGiveNoReportAndKeepTheState) {
    for (const std::uint32_t mode : {3U, 4U, 0xFFFFFFFFU})
        EXPECT_EQ(mouse(mode, IInputMediaBufferMouse::LeftDown), Bytes());
    EXPECT_EQ(state.mouseButtons, 0);
}

/// A buffer as a host makes one: its memory has the raw layout and nothing else is native.
class HostBuffer : public IMediaBuffer {
  public:
    HostBuffer(std::uint8_t type, Bytes payload)
        : mType(type)
        , mPayload(std::move(payload)) {}

    std::uint8_t getType() override { return mType; }

    std::uint32_t getSize() override { return static_cast<std::uint32_t>(mPayload.size()); }

    void* getRawBuffer() override { return mPayload.empty() ? nullptr : mPayload.data(); }

  private:
    std::uint8_t mType;
    Bytes mPayload;
};

TEST_F(HidReportMouse, HostBuffersAreReadByTheRawLayout) {
    const Bytes move{5, 0, 0, 0, 6, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(convert(boost::make_shared<HostBuffer>(10, move)),
              (Bytes{0xA1, 1, 0, 5, 0, 6, 0, 0, 0}));
    EXPECT_EQ(convert(boost::make_shared<HostBuffer>(9, Bytes{30, 0, 0, 0, 0, 0, 0, 0})),
              (Bytes{0xA1, 2, 0, 0, 4, 0, 0, 0, 0, 0}));
}

TEST_F(HidReportMouse, BuffersWithoutAWholePayloadGiveNoReport) {
    EXPECT_EQ(convert(nullptr), Bytes());
    for (const std::uint8_t type : {9, 10}) {
        EXPECT_EQ(convert(boost::make_shared<HostBuffer>(type, Bytes())), Bytes());
        EXPECT_EQ(convert(boost::make_shared<HostBuffer>(type, Bytes(7))), Bytes());
    }
    EXPECT_EQ(convert(boost::make_shared<HostBuffer>(10, Bytes(19))), Bytes());
}

TEST_F(HidReportMouse, OtherMediaTypesGiveNoReport) {
    for (const std::uint8_t type : {0, 8, 11, 28, 255})
        EXPECT_EQ(convert(boost::make_shared<HostBuffer>(type, Bytes(20))), Bytes());
}

TEST_F(HidReportMouse, FailedConversionLeavesAClearedRecord) {
    mouse(kRelative, IInputMediaBufferMouse::LeftDown);
    mouse(3, 0);
    EXPECT_EQ(report.data, nullptr);
    EXPECT_EQ(report.size, 0U);
    EXPECT_EQ(report.bytes, (std::array<std::uint8_t, 24>{}));
}

} // namespace

} // namespace orbelantine
