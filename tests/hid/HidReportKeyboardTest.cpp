#include "core/common/OSAL.h"
#include "hid/IHIDKeyTranslator.h"
#include "hid/WindowsHIDKeyTranslator.h"
#include "tests/hid/HidReportFixture.h"
#include "tests/support/CapturedLog.h"

namespace orbelantine {

namespace {

using test::Bytes;
using test::CapturedLog;
using Lines = std::vector<CapturedLog::Line>;

constexpr const char* kClass = "orbelantine::HIDMediaReportConverter::";

class HidReportKeyboard : public test::HidReportFixture {};

/// One key that the test chooses the codes of.
class OneKey : public IHIDKeyTranslator {
  public:
    OneKey(std::uint32_t consumer, std::uint32_t system, std::uint32_t key)
        : mConsumer(consumer)
        , mSystem(system)
        , mKey(key) {}

    HIDTypes::eUSBHIDKeyCodes translateScanCode(std::int32_t) override {
        return static_cast<HIDTypes::eUSBHIDKeyCodes>(mKey);
    }

    HIDTypes::eUSBHIDKeyCodes translateVirtualKey(std::int32_t) override {
        return HIDTypes::kKeyNone;
    }

    BluetoothHIDClientTypes::eUSBHIDConsumerKeyCodes translateConsumerKey(std::int32_t) override {
        return static_cast<BluetoothHIDClientTypes::eUSBHIDConsumerKeyCodes>(mConsumer);
    }

    BluetoothHIDClientTypes::eUSBHIDSystemControlKeyCodes
    translateSystemControlKey(std::int32_t) override {
        return static_cast<BluetoothHIDClientTypes::eUSBHIDSystemControlKeyCodes>(mSystem);
    }

  private:
    std::uint32_t mConsumer;
    std::uint32_t mSystem;
    std::uint32_t mKey;
};

TEST_F(HidReportKeyboard, FactoryGivesAConverterWithTheConfiguredKeys) {
    converter = osalCreate<HIDMediaReportConverter>(
        OSALFactory::instance(), "HIDMediaReportConverter", test::configuration(true), "");
    EXPECT_EQ(keyDown(29), (Bytes{0xA1, 2, 0x08, 0, 227, 0, 0, 0, 0, 0}));
}

TEST_F(HidReportKeyboard, KeyTakesAPlaceUntilReleased) {
    EXPECT_EQ(keyDown(30), (Bytes{0xA1, 2, 0, 0, 4, 0, 0, 0, 0, 0}));
    EXPECT_EQ(keyDown(31), (Bytes{0xA1, 2, 0, 0, 4, 22, 0, 0, 0, 0}));
    EXPECT_EQ(keyUp(30), (Bytes{0xA1, 2, 0, 0, 0, 22, 0, 0, 0, 0}));
    EXPECT_EQ(keyDown(32), (Bytes{0xA1, 2, 0, 0, 7, 22, 0, 0, 0, 0}));
}

TEST_F(HidReportKeyboard, SeventhKeyHeldAtOnceIsDropped) {
    for (std::uint8_t scanCode = 2; scanCode < 8; ++scanCode)
        keyDown(scanCode);
    const Bytes six{0xA1, 2, 0, 0, 30, 31, 32, 33, 34, 35};
    EXPECT_EQ(keyDown(8), six);
    EXPECT_EQ(keyUp(8), six);
}

TEST_F(HidReportKeyboard, SeventhKeyStillChangesModifiers) {
    for (std::uint8_t scanCode = 2; scanCode < 8; ++scanCode)
        keyDown(scanCode);
    EXPECT_EQ(keyDown(42), (Bytes{0xA1, 2, 2, 0, 30, 31, 32, 33, 34, 35}));
}

TEST_F(HidReportKeyboard, ReleaseOfAKeyNotHeldIsReported) {
    EXPECT_EQ(keyUp(30), (Bytes{0xA1, 2, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(HidReportKeyboard, KeyPressedTwiceTakesTwoPlacesThatOneReleaseFrees) {
    keyDown(30);
    EXPECT_EQ(keyDown(30), (Bytes{0xA1, 2, 0, 0, 4, 4, 0, 0, 0, 0}));
    EXPECT_EQ(keyUp(30), (Bytes{0xA1, 2, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(HidReportKeyboard, ModifierStandsInBothFields) {
    EXPECT_EQ(keyDown(42), (Bytes{0xA1, 2, 2, 0, 225, 0, 0, 0, 0, 0}));
    EXPECT_EQ(keyDown(157), (Bytes{0xA1, 2, 0x12, 0, 225, 228, 0, 0, 0, 0}));
    EXPECT_EQ(keyUp(42), (Bytes{0xA1, 2, 0x10, 0, 0, 228, 0, 0, 0, 0}));
}

TEST_F(HidReportKeyboard, EveryModifierHasABitAndItsNeighboursHaveNone) {
    for (std::uint32_t usage = 223; usage <= 232; ++usage) {
        converter = boost::make_shared<HIDMediaReportConverter>(
            boost::make_shared<OneKey>(kNoTranslation, kNoTranslation, usage));
        state = {};
        const bool modifies = usage >= 224 && usage <= 231;
        EXPECT_EQ(keyDown(1).at(2), modifies ? 1U << (usage - 224) : 0U) << usage;
        EXPECT_EQ(keyUp(1).at(2), 0) << usage;
    }
}

TEST_F(HidReportKeyboard, ConsumerKeysAreReportedByRange) {
    EXPECT_EQ(keyDown(175), (Bytes{0xA1, 5, 48, 0, 0, 0}));
    EXPECT_EQ(keyUp(175), (Bytes{0xA1, 5, 0, 0, 0, 0}));
    EXPECT_EQ(keyDown(199), (Bytes{0xA1, 4, 0x23, 0x02, 0, 0}));
    EXPECT_EQ(keyUp(199), (Bytes{0xA1, 4, 0, 0, 0, 0}));
    EXPECT_EQ(state.keys, (std::array<std::uint8_t, 6>{}));
}

TEST_F(HidReportKeyboard, ConsumerRangesEndWhereTheyShould) {
    const std::vector<std::pair<std::uint32_t, std::uint8_t>> idOfUsage = {
        {0, 2}, {1, 5}, {54, 5}, {55, 2}, {95, 2}, {96, 4}, {716, 4}, {717, 2}};
    for (const auto& [usage, id] : idOfUsage) {
        converter = boost::make_shared<HIDMediaReportConverter>(
            boost::make_shared<OneKey>(usage, kNoTranslation, 4));
        EXPECT_EQ(keyDown(1).at(1), id) << usage;
    }
}

TEST_F(HidReportKeyboard, ConsumerKeyOutOfRangeGoesOnToSystemControl) {
    converter =
        boost::make_shared<HIDMediaReportConverter>(boost::make_shared<OneKey>(55, 0x181, 4));
    CapturedLog log(kLogTrace);
    EXPECT_EQ(keyDown(1), (Bytes{0xA1, 6, 0x81}));
    EXPECT_EQ(
        log.take().at(0),
        (CapturedLog::Line{kLogTrace, std::string(kClass) +
                                          "convertConsumerKey() 0037 is out of range consumer key. "
                                          "discarding."}));
}

TEST_F(HidReportKeyboard, SystemControlKeysHaveAReportOfTheirOwn) {
    EXPECT_EQ(keyDown(253), (Bytes{0xA1, 6, 129}));
    EXPECT_EQ(keyUp(253), (Bytes{0xA1, 6, 0}));
    EXPECT_EQ(keyDown(254), (Bytes{0xA1, 6, 130}));
    EXPECT_EQ(keyDown(255), (Bytes{0xA1, 6, 131}));
}

TEST_F(HidReportKeyboard, AppleKeysDiffer) {
    useAppleKeys();
    EXPECT_EQ(keyDown(170), (Bytes{0xA1, 4, 0x21, 0x02, 0, 0}));
    EXPECT_EQ(keyDown(175), (Bytes{0xA1, 4, 184, 0, 0, 0}));
    EXPECT_EQ(keyDown(253), (Bytes{0xA1, 5, 48, 0, 0, 0}));
    EXPECT_EQ(keyDown(254), Bytes());
    EXPECT_EQ(keyDown(29), (Bytes{0xA1, 2, 0x08, 0, 227, 0, 0, 0, 0, 0}));
    EXPECT_EQ(keyDown(157), (Bytes{0xA1, 2, 0x88, 0, 227, 231, 0, 0, 0, 0}));
}

/// What a fresh device reports for one key down, told from the tables alone.
Bytes expectedKeyDown(IHIDKeyTranslator& keys, std::uint8_t scanCode) {
    const std::uint32_t consumer = keys.translateConsumerKey(scanCode);
    const std::uint32_t system = keys.translateSystemControlKey(scanCode);
    const std::uint32_t usage = keys.translateScanCode(scanCode) & 0xFFU;
    const auto byte = [](std::uint32_t value) { return static_cast<std::uint8_t>(value); };
    if ((consumer >= 1 && consumer <= 54) || (consumer >= 96 && consumer <= 716))
        return {0xA1, byte(consumer <= 54 ? 5 : 4), byte(consumer), byte(consumer >> 8), 0, 0};
    if (system != kNoTranslation)
        return {0xA1, 6, byte(system)};
    if (scanCode == 0 || usage == 255)
        return {};
    const bool modifies = usage >= 224 && usage <= 231;
    return {0xA1, 2, byte(modifies ? 1U << (usage - 224) : 0), 0, byte(usage), 0, 0, 0, 0, 0};
}

TEST_F(HidReportKeyboard, EveryScanCodeTriesConsumerThenSystemThenKeys) {
    for (const bool apple : {false, true}) {
        converter = boost::make_shared<HIDMediaReportConverter>(test::configuration(apple));
        WindowsHIDKeyTranslator keys(test::configuration(apple));
        for (int scanCode = 0; scanCode < 256; ++scanCode) {
            state = {};
            const auto code = static_cast<std::uint8_t>(scanCode);
            EXPECT_EQ(keyDown(code), expectedKeyDown(keys, code)) << scanCode << ' ' << apple;
        }
    }
}

TEST_F(HidReportKeyboard, KeyWithoutScanCodeFailsAndLosesItsExtra) {
    const auto buffer = boost::make_shared<IInputMediaBufferKeyboard>(
        std::uint8_t{0}, std::uint8_t{0}, 0x41U, false);
    CapturedLog log(kLogTrace);
    EXPECT_EQ(convert(buffer), Bytes());
    EXPECT_EQ(buffer->event().extra, 0U);
    EXPECT_EQ(
        log.take(),
        (Lines{
            {kLogWarning, std::string(kClass) + "convertKey() Currently not translating such keys "
                                                "because they usually have an effect on Windows so "
                                                "they are not considered transferrable"},
            {kLogError, std::string(kClass) + "convertKeyboard() error parsing keyboard event."}}));
}

TEST_F(HidReportKeyboard, UntranslatedKeyFailsAndKeepsTheState) {
    keyDown(30);
    CapturedLog log(kLogTrace);
    EXPECT_EQ(keyDown(84), Bytes());
    EXPECT_EQ(state.keys, (std::array<std::uint8_t, 6>{4}));
    EXPECT_EQ(
        log.take(),
        (Lines{
            {kLogTrace,
             std::string(kClass) + "convertKey() translated scan code 0x54 to 0xff (84 to 255)"},
            {kLogError, std::string(kClass) + "convertKey() failed translating keycode: 84"},
            {kLogError, std::string(kClass) + "convertKeyboard() error parsing keyboard event."}}));
}

TEST_F(HidReportKeyboard, ReportsAreTraced) {
    CapturedLog log(kLogTrace);
    keyDown(42);
    EXPECT_EQ(log.take(),
              (Lines{{kLogTrace, std::string(kClass) +
                                     "convertKey() translated scan code 0x2a to 0xe1 (42 to 225)"},
                     {kLogTrace, std::string(kClass) +
                                     "convertKey() BT report: btCode=a1, reportId=02, modify=02, "
                                     "keys=e10000000000"}}));
    keyDown(199);
    EXPECT_EQ(
        log.take(),
        (Lines{{kLogTrace, std::string(kClass) + "convertConsumerKey() translated c7 to 0223"},
               {kLogTrace, std::string(kClass) +
                               "convertConsumerKey() BT report: btCode=a1, reportId=04, "
                               "keys=02230000"}}));
    keyDown(253);
    EXPECT_EQ(log.take(),
              (Lines{{kLogTrace, std::string(kClass) +
                                     "convertSystemControlKey() SystemControl - BT report: "
                                     "btCode=a1, reportId=06, keys=0x81"}}));
}

} // namespace

} // namespace orbelantine
