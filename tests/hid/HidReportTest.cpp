#include "hid/reports/HIDReport.h"

#include "avstack/IInputMediaBufferKeyboard.h"
#include "avstack/IInputMediaBufferMouse.h"
#include "avstack/RawMediaBuffer.h"
#include "core/common/config/KVStore.h"
#include "hid/reports/HIDMediaReportConverter.h"
#include "hid/reports/HIDReportState.h"
#include "hid/reports/IHIDKeyTranslator.h"
#include "hid/reports/WindowsHIDKeyTranslator.h"
#include "tests/support/CapturedLog.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <tuple>
#include <utility>
#include <vector>

namespace orbelantine::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

KVStore configuration(bool apple) {
    KVStore store;
    store.setBoolAt("apple", apple);
    return store;
}

/// One key that the test chooses the codes of.
struct OneKey : IHIDKeyTranslator {
    HIDTypes::eUSBHIDKeyCodes translateScanCode(std::int32_t) override {
        return HIDTypes::eUSBHIDKeyCodes(key);
    }

    HIDTypes::eUSBHIDKeyCodes translateVirtualKey(std::int32_t) override { return {}; }

    BluetoothHIDClientTypes::eUSBHIDConsumerKeyCodes translateConsumerKey(std::int32_t) override {
        return BluetoothHIDClientTypes::eUSBHIDConsumerKeyCodes(consumer);
    }

    BluetoothHIDClientTypes::eUSBHIDSystemControlKeyCodes
    translateSystemControlKey(std::int32_t) override {
        return BluetoothHIDClientTypes::eUSBHIDSystemControlKeyCodes(system);
    }

    std::uint32_t consumer = 0;
    std::uint32_t system = 0;
    std::uint32_t key = 0;
};

/// A converter with a device's state; each call gives the bytes of one event's report, or none.
class HidReport : public ::testing::Test {
  protected:
    static constexpr std::uint32_t kAbsolute = 0;
    static constexpr std::uint32_t kDigitizer = 1;
    static constexpr std::uint32_t kRelative = 2;

    Bytes convert(const boost::shared_ptr<IMediaBuffer>& buffer, std::uint32_t mode = kRelative) {
        const bool made = converter->convertToReport(buffer, mode, state, report);
        return made ? Bytes(report.data, report.data + report.size) : Bytes();
    }

    Bytes mouse(std::uint32_t mode, std::uint8_t type, std::int32_t x = 0, std::int32_t y = 0) {
        return convert(boost::make_shared<IInputMediaBufferMouse>(x, y, type, false), mode);
    }

    Bytes keyDown(std::uint8_t scanCode) {
        return key(scanCode, IInputMediaBufferKeyboard::KeyDown);
    }

    Bytes keyUp(std::uint8_t scanCode) { return key(scanCode, IInputMediaBufferKeyboard::KeyUp); }

    Bytes key(std::uint8_t scanCode, std::uint8_t type) {
        return convert(boost::make_shared<IInputMediaBufferKeyboard>(scanCode, type, ~0U, false));
    }

    void useKey(std::uint32_t consumer, std::uint32_t system, std::uint32_t key) {
        const auto keys = boost::make_shared<OneKey>();
        std::tie(keys->consumer, keys->system, keys->key) = std::tie(consumer, system, key);
        converter = boost::make_shared<HIDMediaReportConverter>(keys);
        state = {};
    }

    boost::shared_ptr<HIDMediaReportConverter> converter =
        boost::make_shared<HIDMediaReportConverter>(configuration(false));
    HIDReportState state;
    HIDReport report;
};

TEST_F(HidReport, RelativeReportHasTheLow16BitsOfAMoveOrOfTheWheelAndHoldsButtonsUntilReleased) {
    EXPECT_EQ(mouse(kRelative, 0, -2, 0x12345678),
              (Bytes{0xA1, 1, 0, 0xFE, 0xFF, 0x78, 0x56, 0, 0}));
    EXPECT_EQ(mouse(kRelative, 0, 32767, -32768), (Bytes{0xA1, 1, 0, 0xFF, 0x7F, 0, 0x80, 0, 0}));
    EXPECT_EQ(mouse(kRelative, 5, 7, -120), (Bytes{0xA1, 1, 0, 0, 0, 0, 0, 0x88, 0xFF}));
    EXPECT_EQ(mouse(kRelative, 6, 7, 0x10203), (Bytes{0xA1, 1, 0, 0, 0, 0, 0, 3, 2}));
    EXPECT_EQ(convert(boost::make_shared<IInputMediaBufferMouse>(5, 6, std::uint8_t{0}, true)),
              (Bytes{0xA1, 1, 0, 0, 0, 0, 0, 0, 0}));
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

TEST_F(HidReport, AbsoluteTipFollowsTheLeftButtonAndOtherEventsLiftItForOneReport) {
    EXPECT_EQ(mouse(kAbsolute, 0, 65535, 1), (Bytes{0xA1, 3, 0x21, 0xFF, 0xFF, 1, 0, 0, 0}));
    const std::vector<std::pair<std::uint8_t, std::uint8_t>> tipAfterEvent = {
        {2, 1}, {0, 1}, {3, 0}, {4, 0}, {5, 0}, {6, 0}, {7, 0}, {8, 0}, {9, 0}, {0, 1}, {1, 0}};
    for (const auto& [event, tip] : tipAfterEvent)
        EXPECT_EQ(mouse(kAbsolute, event, 2, 3), (Bytes{0xA1, 3, 0x21, 2, 0, 3, 0, tip, 0}));
    EXPECT_EQ(mouse(kAbsolute, 0, 8, 9), (Bytes{0xA1, 3, 0x21, 8, 0, 9, 0, 0, 0}));
}

TEST_F(HidReport, DigitizerReportsOneContactOfFixedExtentWhoseTipFollowsTheLeftButtonAndCounts) {
    EXPECT_EQ(mouse(kDigitizer, 2, 0x1234, 0x5678),
              (Bytes{0xA1, 3,    1,    0,    0x34, 0x12, 0, 0, 0x78, 0x56, 0,
                     0,    0xFF, 0x0F, 0xFF, 0x0F, 0,    0, 0, 0,    1}));
    const std::vector<std::pair<std::uint8_t, std::uint8_t>> tipAfterEvent = {
        {0, 1}, {4, 0}, {0, 1}, {1, 0}, {0, 0}};
    for (const auto& [event, tip] : tipAfterEvent)
        EXPECT_EQ(mouse(kDigitizer, event).at(2), tip);
    for (const std::uint16_t count : {0, 255, 65535}) {
        state.scanCounter = count;
        mouse(kAbsolute, 0);
        for (const std::uint8_t step : {0, 1}) {
            const Bytes bytes = mouse(kDigitizer, 0);
            EXPECT_EQ(bytes.at(18) | bytes.at(19) << 8, (count + step) % 65536);
        }
    }
}

TEST_F(HidReport, OtherModesGiveNoReportAndAClearedRecordAndKeepTheState) {
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

TEST_F(HidReport, HostBuffersAreReadByTheRawLayoutIfTypeAndPayloadAreWhole) {
    Bytes move{5, 0, 0, 0, 6, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    Bytes keyDown{30, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(convert(hostBuffer(10, move)), (Bytes{0xA1, 1, 0, 5, 0, 6, 0, 0, 0}));
    EXPECT_EQ(convert(hostBuffer(9, keyDown)), (Bytes{0xA1, 2, 0, 0, 4, 0, 0, 0, 0, 0}));

    const std::pair<std::uint8_t, std::size_t> buffers[] = {
        {9, 0}, {9, 7}, {10, 0}, {10, 7}, {10, 19}, {0, 20}, {8, 20}, {11, 20}, {28, 20}};
    for (const auto& [type, size] : buffers) {
        Bytes payload(size);
        EXPECT_EQ(convert(hostBuffer(type, payload)), Bytes()) << int{type} << ' ' << size;
    }
    EXPECT_EQ(convert(boost::make_shared<RawMediaBuffer>(std::uint8_t{10}, 20U, std::uint64_t{0},
                                                         nullptr, false)),
              Bytes());
    EXPECT_EQ(convert(nullptr), Bytes());
}

TEST_F(HidReport, EachPressTakesAPlaceThatTheNextReleaseFreesAndAModifierABitToo) {
    EXPECT_EQ(keyDown(30), (Bytes{0xA1, 2, 0, 0, 4, 0, 0, 0, 0, 0}));
    EXPECT_EQ(keyDown(31), (Bytes{0xA1, 2, 0, 0, 4, 22, 0, 0, 0, 0}));
    EXPECT_EQ(keyUp(30), (Bytes{0xA1, 2, 0, 0, 0, 22, 0, 0, 0, 0}));
    EXPECT_EQ(keyDown(31), (Bytes{0xA1, 2, 0, 0, 22, 22, 0, 0, 0, 0}));
    EXPECT_EQ(keyUp(31), (Bytes{0xA1, 2, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(keyUp(31), (Bytes{0xA1, 2, 0, 0, 0, 0, 0, 0, 0, 0})) << "not held, and reported";
    EXPECT_EQ(keyDown(42), (Bytes{0xA1, 2, 2, 0, 225, 0, 0, 0, 0, 0}));
    EXPECT_EQ(keyDown(157), (Bytes{0xA1, 2, 0x12, 0, 225, 228, 0, 0, 0, 0}));
    EXPECT_EQ(keyUp(42), (Bytes{0xA1, 2, 0x10, 0, 0, 228, 0, 0, 0, 0}));
}

TEST_F(HidReport, SeventhKeyHeldAtOnceIsDroppedAndStillChangesModifiers) {
    for (std::uint8_t scanCode = 2; scanCode < 8; ++scanCode)
        keyDown(scanCode);
    const Bytes six{0xA1, 2, 0, 0, 30, 31, 32, 33, 34, 35};
    EXPECT_EQ(keyDown(8), six);
    EXPECT_EQ(keyUp(8), six);
    EXPECT_EQ(keyDown(42), (Bytes{0xA1, 2, 2, 0, 30, 31, 32, 33, 34, 35}));
}

TEST_F(HidReport, EveryModifierHasABitAndItsNeighboursHaveNone) {
    for (std::uint32_t usage = 223; usage <= 232; ++usage) {
        useKey(kNoTranslation, kNoTranslation, usage);
        const bool modifies = usage >= 224 && usage <= 231;
        EXPECT_EQ(keyDown(1).at(2), modifies ? 1U << (usage - 224) : 0U) << usage;
        EXPECT_EQ(keyUp(1).at(2), 0) << usage;
    }
}

TEST_F(HidReport, ConsumerAndSystemKeysComeFirstWithReportsOfTheirOwn) {
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
        converter = boost::make_shared<HIDMediaReportConverter>(configuration(apple));
        EXPECT_EQ(keyDown(scanCode), down) << int{scanCode} << ' ' << apple;
        EXPECT_EQ(keyUp(scanCode), up) << int{scanCode} << ' ' << apple;
    }
}

TEST_F(HidReport, ConsumerKeyOutOfRangeGoesOn) {
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

TEST_F(HidReport, KeyThatFailsKeepsTheStateAndLosesItsExtra) {
    keyDown(30);
    const auto buffer = boost::make_shared<IInputMediaBufferKeyboard>(
        std::uint8_t{0}, std::uint8_t{0}, 0x41U, false);
    EXPECT_EQ(convert(buffer), Bytes()) << "it has no scan code";
    EXPECT_EQ(buffer->event().extra, 0U);
    EXPECT_EQ(keyDown(84), Bytes()) << "it has no usage";
    EXPECT_EQ(state.keys, (std::array<std::uint8_t, 6>{4}));
}

TEST_F(HidReport, EachKeyLogsItsTranslationAndReportOrWhyItFails) {
    CapturedLog log(kLogTrace, "orbelantine::HIDMediaReportConverter::");
    for (const std::uint8_t scanCode : {42, 199, 253, 84, 0})
        keyDown(scanCode);
    useKey(55, kNoTranslation, 255);
    keyDown(1);
    EXPECT_EQ(
        log.told(),
        (Texts{"trace convertKey() translated scan code 0x2a to 0xe1 (42 to 225)",
               "trace convertKey() BT report: btCode=a1, reportId=02, modify=02, keys=e10000000000",
               "trace convertConsumerKey() translated c7 to 0223",
               "trace convertConsumerKey() BT report: btCode=a1, reportId=04, keys=02230000",
               "trace convertSystemControlKey() SystemControl - BT report: btCode=a1, reportId=06, "
               "keys=0x81",
               "trace convertKey() translated scan code 0x54 to 0xff (84 to 255)",
               "error convertKey() failed translating keycode: 84",
               "error convertKeyboard() error parsing keyboard event.",
               "warning convertKey() Currently not translating such keys because they usually have "
               "an effect on Windows so they are not considered transferrable",
               "error convertKeyboard() error parsing keyboard event.",
               "trace convertConsumerKey() 0037 is out of range consumer key. discarding.",
               "trace convertKey() translated scan code 0x01 to 0xff (1 to 255)",
               "error convertKey() failed translating keycode: 1",
               "error convertKeyboard() error parsing keyboard event."}));
}

using Pairs = std::vector<std::pair<std::int32_t, std::uint32_t>>;

/// The codes of a table that are there, in the order of their indices.
template <class Translate>
Pairs pairsOf(WindowsHIDKeyTranslator& keys, Translate translate) {
    Pairs result;
    for (std::int32_t index = 0; index < 256; ++index)
        if (const std::uint32_t code = std::invoke(translate, keys, index); code != kNoTranslation)
            result.emplace_back(index, code);
    return result;
}

class HidKeyTranslator : public ::testing::Test {
  protected:
    WindowsHIDKeyTranslator plain{configuration(false)};
    WindowsHIDKeyTranslator apple{configuration(true)};
};

TEST_F(HidKeyTranslator, KeysOfEachRowHaveTheirUsagesAndNoOthersHaveOne) {
    const Pairs expected = {{0, 0},     {1, 41},    {2, 30},    {11, 39},   {12, 45},   {14, 42},
                            {15, 43},   {16, 20},   {25, 19},   {28, 40},   {30, 4},    {38, 15},
                            {41, 53},   {42, 225},  {43, 49},   {44, 29},   {50, 16},   {53, 56},
                            {54, 229},  {55, 85},   {56, 226},  {57, 44},   {58, 57},   {59, 58},
                            {68, 67},   {69, 72},   {70, 71},   {71, 95},   {74, 86},   {78, 87},
                            {81, 91},   {83, 99},   {86, 100},  {88, 69},   {160, 239}, {181, 84},
                            {184, 230}, {197, 83},  {199, 74},  {203, 80},  {211, 76},  {219, 227},
                            {221, 101}, {240, 138}, {249, 136}, {250, 139}, {251, 145}, {252, 137}};
    for (const auto& [index, code] : expected)
        EXPECT_EQ(plain.translateScanCode(index), code) << index;
    EXPECT_EQ(pairsOf(plain, &WindowsHIDKeyTranslator::translateScanCode).size(), 113U);
    for (const std::int32_t index : {84, 85, 89, 128, 156, 198, 222, 239, 255})
        EXPECT_EQ(plain.translateScanCode(index), 0xFFFFFFFFU) << index;
}

TEST_F(HidKeyTranslator, AppleTurnsTheControlKeysIntoLogoKeys) {
    KVStore unset;
    WindowsHIDKeyTranslator either(unset);
    EXPECT_TRUE(unset.getBoolAt("apple", true)) << "the default isn't written back";
    Pairs expected = pairsOf(either, &WindowsHIDKeyTranslator::translateScanCode);
    EXPECT_EQ(pairsOf(plain, &WindowsHIDKeyTranslator::translateScanCode), expected);
    for (auto& [index, code] : expected)
        if (index == 29 || index == 157) {
            EXPECT_EQ(code, index == 29 ? 224U : 228U);
            code += 3;
        }
    EXPECT_EQ(pairsOf(apple, &WindowsHIDKeyTranslator::translateScanCode), expected);
}

TEST_F(HidKeyTranslator, MediaConsumerAndSystemKeysAreTheseAlone) {
    const auto mediaKeys = &WindowsHIDKeyTranslator::translateVirtualKey;
    const auto consumerKeys = &WindowsHIDKeyTranslator::translateConsumerKey;
    const auto systemKeys = &WindowsHIDKeyTranslator::translateSystemControlKey;
    const Pairs media = {{166, 241}, {167, 242}, {168, 250}, {169, 243}, {172, 240}, {173, 239},
                         {174, 238}, {175, 237}, {176, 235}, {177, 234}, {178, 233}, {179, 232}};
    EXPECT_EQ(pairsOf(plain, mediaKeys), media);
    EXPECT_EQ(pairsOf(apple, mediaKeys), media);
    EXPECT_EQ(pairsOf(plain, consumerKeys), (Pairs{{170, 418}, {175, 48}, {199, 547}}));
    EXPECT_EQ(pairsOf(apple, consumerKeys), (Pairs{{170, 545}, {175, 184}, {199, 547}, {253, 48}}));
    EXPECT_EQ(pairsOf(plain, systemKeys), (Pairs{{253, 129}, {254, 130}, {255, 131}}));
    EXPECT_EQ(pairsOf(apple, systemKeys), Pairs());
}

} // namespace
} // namespace orbelantine::test
