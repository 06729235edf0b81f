#include "hid/reports/HIDEventsPacker.h"

#include "avstack/IInputMediaBufferKeyboard.h"
#include "avstack/IInputMediaBufferMouse.h"
#include "core/common/config/KVStore.h"
#include "tests/support/CapturedLog.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace orbelantine::test {

namespace {

using Bytes = std::vector<std::uint8_t>;

/// The first virtual key that the packer knows; its usage is 241.
constexpr std::uint8_t kBrowserBack = 166;

class Recorder : public IMediaElement {
  public:
    void onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) override {
        frames.push_back(buffer);
    }

    std::vector<boost::shared_ptr<IMediaBuffer>> frames;
};

const IInputMediaBufferHID::EventData& eventOf(IMediaBuffer& buffer) {
    return *static_cast<const IInputMediaBufferHID::EventData*>(buffer.getRawBuffer());
}

Bytes bytesOf(IMediaBuffer& buffer) {
    RawMediaBuffer& report = *eventOf(buffer).report;
    const auto* const data = static_cast<const std::uint8_t*>(report.getRawBuffer());
    return Bytes(data, data + report.getSize());
}

class HidEventsPacker : public ::testing::Test {
  protected:
    HidEventsPacker() { packer.registerTarget(target); }

    /// The bytes of the report that the event gives, or none.
    Bytes mouse(std::uint8_t type, std::int32_t x = 0, std::int32_t y = 0) {
        return bytesAfter(boost::make_shared<IInputMediaBufferMouse>(x, y, type, true, 40));
    }

    Bytes key(std::uint8_t virtualKey, std::uint8_t type) {
        return bytesAfter(boost::make_shared<IInputMediaBufferKeyboard>(virtualKey, type, ~0U));
    }

    Bytes bytesAfter(const boost::shared_ptr<IMediaBuffer>& buffer) {
        const std::size_t before = target->frames.size();
        packer.onFrame(buffer);
        return target->frames.size() > before ? bytesOf(*target->frames.back()) : Bytes();
    }

    HIDEventsPacker packer{KVStore()};
    boost::shared_ptr<Recorder> target = boost::make_shared<Recorder>();
};

TEST_F(HidEventsPacker, MouseReportHasSixBytesInABufferOfTwelveAndHoldsButtonsUntilReleased) {
    EXPECT_EQ(mouse(0, 5, -6), (Bytes{0xA1, 1, 0, 5, 0xFA, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(mouse(5, 5, -1), (Bytes{0xA1, 1, 0, 0, 0, 0xFF, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(mouse(6, 5, 0x102), (Bytes{0xA1, 1, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0}));
    const auto hostOrder = boost::make_shared<IInputMediaBufferMouse>(
        0x05000000, 0x06000000, std::uint8_t{0}, false, std::uint64_t{0});
    EXPECT_EQ(bytesAfter(hostOrder), (Bytes{0xA1, 1, 0, 5, 6, 0, 0, 0, 0, 0, 0, 0}))
        << "swapped whatever the order";
    const std::vector<std::pair<std::uint8_t, std::uint8_t>> buttonsAfterEvent = {
        {2, 1}, {4, 3}, {8, 7}, {1, 6}, {3, 4}, {7, 0}};
    for (const auto& [event, buttons] : buttonsAfterEvent)
        EXPECT_EQ(mouse(event, 5, 6), (Bytes{0xA1, 1, buttons, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(HidEventsPacker, EveryEventIsLoggedAndAnUnknownOneDropped) {
    CapturedLog log(kLogDebug);
    mouse(2);
    mouse(0, -1, 2);
    key(kBrowserBack, 0);
    EXPECT_EQ(mouse(9), Bytes());
    EXPECT_EQ(key(30, 0), Bytes());
    const std::string onFrame = "error HIDEventsPacker::onFrame() ";
    const std::string buttons = ", mouse buttons:0x1, rep.reportId:1, rep.btCode:a1.";
    EXPECT_EQ(
        log.told(),
        (Texts{
            onFrame + "sending hid mouse event rep.axisX:0, rep.axisY:0, rep.axisZ:0, " + buttons,
            onFrame + "sending hid mouse event rep.axisX:-1, rep.axisY:2, rep.axisZ:0, " + buttons,
            "debug HIDEventsPacker::parseKeyboardEvent, scancode: 166 --> hidCode:241, "
            "modifiers:0x0",
            "error BluetoothHIDClientBase::parseMouseEvent - unknown event type:9",
            onFrame + "- error parsing mouse event.",
            "debug BluetoothHIDClientBase::doOnFrame - failed translating keycode: 30",
            onFrame + "- error parsing keyboard event."}));
}

TEST_F(HidEventsPacker, FrameTellsKindAndTimesAndACopyHasAReportOfItsOwn) {
    HIDEventsPacker bare(KVStore(), false);
    bare.registerTarget(target);
    const std::uint64_t before = IMediaBuffer::getNowTimestamp();
    mouse(0, 5, 6);
    bare.onFrame(boost::make_shared<IInputMediaBufferKeyboard>(kBrowserBack, std::uint8_t{0}, 0U));
    IMediaBuffer& mouseFrame = *target->frames.at(0);
    IMediaBuffer& keyFrame = *target->frames.at(1);
    EXPECT_GE(mouseFrame.getTimestamp(), before);
    EXPECT_LE(mouseFrame.getTimestamp(), IMediaBuffer::getNowTimestamp());
    EXPECT_EQ(bytesOf(keyFrame), (Bytes{2, 0, 241, 0, 0, 0, 0, 0, 0, 0, 0, 0}))
        << "without the first byte";
    EXPECT_EQ(eventOf(keyFrame).kind, IInputMediaBufferHID::Keyboard);
    EXPECT_EQ(eventOf(keyFrame).sourceTimestamp, 0U);
    EXPECT_EQ(keyFrame.getType(), 11);
    EXPECT_EQ(keyFrame.getSize(), 32U);
    EXPECT_EQ(keyFrame.map(0), keyFrame.getRawBuffer());
    EXPECT_FALSE(keyFrame.getRawMediaContext());
    for (const auto& copy : {mouseFrame.copy(), mouseFrame.soft_copy(), mouseFrame.copy(11)}) {
        const bool asKey = copy->getType() == 11;
        EXPECT_EQ(bytesOf(*copy), bytesOf(mouseFrame));
        EXPECT_NE(eventOf(*copy).report, eventOf(mouseFrame).report);
        EXPECT_EQ(eventOf(*copy).kind,
                  asKey ? IInputMediaBufferHID::Keyboard : IInputMediaBufferHID::Mouse);
        EXPECT_EQ(eventOf(*copy).sourceTimestamp, 40U);
        EXPECT_EQ(copy->getTimestamp(), mouseFrame.getTimestamp());
    }
    EXPECT_EQ(mouseFrame.copy(11)->getType(), 11);
}

TEST_F(HidEventsPacker, KeyboardReportHasEightPlacesAndStopForgetsWhatIsHeldAndSendsToNobody) {
    Bytes expected{0xA1, 2, 0, 241, 242, 250, 243, 240, 239, 238, 237, 0};
    for (const std::uint8_t virtualKey : {166, 167, 168, 169, 172, 173, 174})
        key(virtualKey, 0);
    EXPECT_EQ(key(175, 0), expected);
    EXPECT_EQ(key(176, 0), expected);
    expected.at(4) = 0;
    EXPECT_EQ(key(167, 1), expected);
    mouse(2);
    packer.stop();
    EXPECT_EQ(target.use_count(), 1);
    CapturedLog log(kLogDebug);
    EXPECT_EQ(mouse(0), Bytes());
    EXPECT_EQ(log.told().back(), "debug Leaving function orbelantine::IMediaElement::onFrame");
    packer.registerTarget(target);
    EXPECT_EQ(mouse(0), (Bytes{0xA1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(key(167, 0), (Bytes{0xA1, 2, 0, 242, 0, 0, 0, 0, 0, 0, 0, 0}));
}

} // namespace

} // namespace orbelantine::test
