#include "hid/reports/IHIDKeyTranslator.h"
#include "tests/hid/HidReportFixture.h"
#include "tests/support/CapturedLog.h"

namespace orbelantine {

namespace {

using test::Bytes;
using test::CapturedLog;
using Line = CapturedLog::Line;

const std::string kClass = "orbelantine::HIDMediaReportConverter::";

/// One key that the test chooses the codes of.
class OneKey : public IHIDKeyTranslator {
  public:
    OneKey(std::uint32_t consumer, std::uint32_t system, std::uint32_t key)
        : mConsumer(consumer)
        , mSystem(system)
        , mKey(key) {}

    HIDTypes::eUSBHIDKeyCodes translateScanCode(std::int32_t) override {
        return HIDTypes::eUSBHIDKeyCodes(mKey);
    }

    HIDTypes::eUSBHIDKeyCodes translateVirtualKey(std::int32_t) override { return {}; }

    BluetoothHIDClientTypes::eUSBHIDConsumerKeyCodes translateConsumerKey(std::int32_t) override {
        return BluetoothHIDClientTypes::eUSBHIDConsumerKeyCodes(mConsumer);
    }

    BluetoothHIDClientTypes::eUSBHIDSystemControlKeyCodes
    translateSystemControlKey(std::int32_t) override {
        return BluetoothHIDClientTypes::eUSBHIDSystemControlKeyCodes(mSystem);
    }

  private:
    std::uint32_t mConsumer;
    std::uint32_t mSystem;
    std::uint32_t mKey;
};

class HidReportKeyboard : public test::HidReportFixture {
  protected:
    void useKey(std::uint32_t consumer, std::uint32_t system, std::uint32_t key) {
        converter = boost::make_shared<HIDMediaReportConverter>(
            boost::make_shared<OneKey>(consumer, system, key));
        state = {};
    }
};

TEST_F(HidReportKeyboard, KeyTakesAPlaceUntilReleased) {
    EXPECT_EQ(keyDown(30), (Bytes{0xA1, 2, 0, 0, 4, 0, 0, 0, 0, 0}));
    EXPECT_EQ(keyDown(31), (Bytes{0xA1, 2, 0, 0, 4, 22, 0, 0, 0, 0}));
    EXPECT_EQ(keyUp(30), (Bytes{0xA1, 2, 0, 0, 0, 22, 0, 0, 0, 0}));
    EXPECT_EQ(keyDown(32), (Bytes{0xA1, 2, 0, 0, 7, 22, 0, 0, 0, 0}));
}

TEST_F(HidReportKeyboard, SeventhKeyHeldAtOnceIsDroppedAndStillChangesModifiers) {
    for (std::uint8_t scanCode = 2; scanCode < 8; ++scanCode)
        keyDown(scanCode);
    const Bytes six{0xA1, 2, 0, 0, 30, 31, 32, 33, 34, 35};
    EXPECT_EQ(keyDown(8), six);
    EXPECT_EQ(keyUp(8), six);
    EXPECT_EQ(keyDown(42), (Bytes{0xA1, 2, 2, 0, 30, 31, 32, 33, 34, 35}));
}

TEST_F(HidReportKeyboard, KeyPressedTwiceTakesTwoPlacesThatOneReleaseFrees) {
    keyDown(30);
    EXPECT_EQ(keyDown(30), (Bytes{0xA1, 2, 0, 0, 4, 4, 0, 0, 0, 0}));
    EXPECT_EQ(keyUp(30), (Bytes{0xA1, 2, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(keyUp(30), (Bytes{0xA1, 2, 0, 0, 0, 0, 0, 0, 0, 0})) << "not held, and reported";
}

TEST_F(HidReportKeyboard, ModifierStandsInBothFields) {
    EXPECT_EQ(keyDown(42), (Bytes{0xA1, 2, 2, 0, 225, 0, 0, 0, 0, 0}));
    EXPECT_EQ(keyDown(157), (Bytes{0xA1, 2, 0x12, 0, 225, 228, 0, 0, 0, 0}));
    EXPECT_EQ(keyUp(42), (Bytes{0xA1, 2, 0x10, 0, 0, 228, 0, 0, 0, 0}));
}

TEST_F(HidReportKeyboard, EveryModifierHasABitAndItsNeighboursHaveNone) {
    for (std::uint32_t usage = 223; usage <= 232; ++usage) {
        useKey(kNoTranslation, kNoTranslation, usage);
        const bool modifies = usage >= 224 && usage <= 231;
        EXPECT_EQ(keyDown(1).at(2), modifies ? 1U << (usage - 224) : 0U) << usage;
        EXPECT_EQ(keyUp(1).at(2), 0) << usage;
    }
}

TEST_F(HidReportKeyboard, ConsumerAndSystemKeysComeFirstWithReportsOfTheirOwn) {
    const struct {
        bool apple;
        std::uint8_t scanCode;
        Bytes down;
        Bytes up;
    } keys[] = {
        {false, 175, {0xA1, 5, 48, 0, 0, 0}, {0xA1, 5, 0, 0, 0, 0}},
        {false, 199, {0xA1, 4, 0x23, 0x02, 0, 0}, {0xA1, 4, 0, 0, 0, 0}},
        {false, 253, {0xA1, 6, 129}, {0xA1, 6, 0}},
        {true, 253, {0xA1, 5, 48, 0, 0, 0}, {0xA1, 5, 0, 0, 0, 0}},
        {true, 254, {}, {}},
        {true, 29, {0xA1, 2, 8, 0, 227, 0, 0, 0, 0, 0}, {0xA1, 2, 0, 0, 0, 0, 0, 0, 0, 0}},
    };

    for (const auto& [apple, scanCode, down, up] : keys) {
        converter = boost::make_shared<HIDMediaReportConverter>(test::configuration(apple));
        EXPECT_EQ(keyDown(scanCode), down) << int{scanCode} << ' ' << apple;
        EXPECT_EQ(keyUp(scanCode), up) << int{scanCode} << ' ' << apple;
    }
}

TEST_F(HidReportKeyboard, ConsumerKeyOutOfRangeGoesOn) {
    const std::vector<std::pair<std::uint32_t, std::uint8_t>> idOfUsage = {
        {0, 2}, {1, 5}, {54, 5}, {55, 2}, {95, 2}, {96, 4}, {716, 4}, {717, 2}};
    for (const auto& [usage, id] : idOfUsage) {
        useKey(usage, kNoTranslation, 4);
        EXPECT_EQ(keyDown(1).at(1), id) << usage;
    }
    useKey(55, 0x181, 4);
    EXPECT_EQ(keyDown(1), (Bytes{0xA1, 6, 0x81}));
    EXPECT_EQ(state.keys, (std::array<std::uint8_t, 6>{}));
}

TEST_F(HidReportKeyboard, KeyThatFailsKeepsTheStateAndLosesItsExtra) {
    keyDown(30);
    const auto buffer = boost::make_shared<IInputMediaBufferKeyboard>(
        std::uint8_t{0}, std::uint8_t{0}, 0x41U, false);
    EXPECT_EQ(convert(buffer), Bytes()) << "it has no scan code";
    EXPECT_EQ(buffer->event().extra, 0U);
    EXPECT_EQ(keyDown(84), Bytes()) << "it has no usage";
    EXPECT_EQ(state.keys, (std::array<std::uint8_t, 6>{4}));
}

TEST_F(HidReportKeyboard, EachKeyLogsItsTranslationAndReportOrWhyItFails) {
    CapturedLog log(kLogTrace);
    for (const std::uint8_t scanCode : {42, 199, 253, 84, 0})
        keyDown(scanCode);
    useKey(55, kNoTranslation, 4);
    keyDown(1);
    const std::pair<unsigned, const char*> lines[] = {
        {kLogTrace, "convertKey() translated scan code 0x2a to 0xe1 (42 to 225)"},
        {kLogTrace, "convertKey() BT report: btCode=a1, reportId=02, modify=02, "
                    "keys=e10000000000"},
        {kLogTrace, "convertConsumerKey() translated c7 to 0223"},
        {kLogTrace, "convertConsumerKey() BT report: btCode=a1, reportId=04, keys=02230000"},
        {kLogTrace, "convertSystemControlKey() SystemControl - BT report: btCode=a1, "
                    "reportId=06, keys=0x81"},
        {kLogTrace, "convertKey() translated scan code 0x54 to 0xff (84 to 255)"},
        {kLogError, "convertKey() failed translating keycode: 84"},
        {kLogError, "convertKeyboard() error parsing keyboard event."},
        {kLogWarning, "convertKey() Currently not translating such keys because they usually have "
                      "an effect on Windows so they are not considered transferrable"},
        {kLogError, "convertKeyboard() error parsing keyboard event."},
        {kLogTrace, "convertConsumerKey() 0037 is out of range consumer key. discarding."},
    };
    const auto told = log.take();
    ASSERT_GE(told.size(), std::size(lines));
    for (std::size_t i = 0; i < std::size(lines); ++i)
        EXPECT_EQ(told[i], (Line{lines[i].first, kClass + lines[i].second}));
}

} // namespace

} // namespace orbelantine
