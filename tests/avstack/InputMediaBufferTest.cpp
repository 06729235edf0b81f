#include "avstack/IInputMediaBufferKeyboard.h"
#include "avstack/IInputMediaBufferMouse.h"
#include "avstack/IInputMediaBufferTouch.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace orbelantine {

namespace {

using Mouse = IInputMediaBufferMouse;
using Keyboard = IInputMediaBufferKeyboard;
using Touch = IInputMediaBufferTouch;

using Bytes = std::vector<std::uint8_t>;

/// What the ways to be copied give.
template <class Buffer>
std::vector<boost::shared_ptr<Buffer>> copiesOf(Buffer& buffer) {
    std::vector<boost::shared_ptr<Buffer>> copies;
    for (const auto& copy : {buffer.copy(), buffer.soft_copy(), buffer.copy(3, 4)}) {
        EXPECT_NE(copy->getRawBuffer(), buffer.getRawBuffer());
        copies.push_back(boost::dynamic_pointer_cast<Buffer>(copy));
    }
    return copies;
}

/// Of a buffer in host order and all its copies.
template <class Buffer>
void expectOf(Buffer& buffer, int type, std::uint64_t timestamp, const Bytes& payload) {
    auto all = copiesOf(buffer);
    all.emplace_back(boost::shared_ptr<void>(), &buffer);
    for (const auto& each : all) {
        EXPECT_EQ(each->getType(), type);
        EXPECT_EQ(each->getTimestamp(), timestamp);
        EXPECT_FALSE(each->networkOrder());
        EXPECT_EQ(each->map(), each->getRawBuffer());
        EXPECT_EQ(each->map(0), each->getRawBuffer());
        const auto* bytes = static_cast<const std::uint8_t*>(each->getRawBuffer());
        EXPECT_EQ(Bytes(bytes, bytes + each->getSize()), payload);
    }
}

TEST(InputMediaBuffer, PayloadsAreReadByOffsetAndTheirReservedBytesAreZero) {
    Mouse mouse(-2, 70000, Mouse::WheelPositive, false, 55, 3, 4);
    expectOf(mouse, 10, 55,
             {0xFE, 0xFF, 0xFF, 0xFF, 0x70, 0x11, 1, 0, 6, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 0});
    Keyboard keyboard(0x9D, Keyboard::KeyUp, 0x01020304, false);
    expectOf(keyboard, 9, 0, {0x9D, 1, 0, 0, 4, 3, 2, 1});
    Touch touch(3, 65535, 1, Touch::Down, false, 55);
    expectOf(touch, 28, 55, {3, 0, 0, 0, 0xFF, 0xFF, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0});
}

TEST(InputMediaBuffer, ConstructorsSwapTheirIntegersUnlessToldAndSoDoCopies) {
    Mouse mouse(5, 6, 2, true, 1, 7, 8);
    const Mouse::EventData& at = mouse.event();
    EXPECT_EQ((std::vector{at.x, at.y, at.maxX, at.maxY}),
              (std::vector{0x05000000, 0x06000000, 0x07000000, 0x08000000}));
    Keyboard keyboard(0, 1, 0x41);
    EXPECT_EQ(keyboard.event().extra, 0x41000000U);
    Touch touch(4, 5, 6, 1);
    EXPECT_EQ(touch.event().x, 0x05000000);
    EXPECT_EQ(touch.event().y, 0x06000000);
    EXPECT_TRUE(mouse.networkOrder() && keyboard.networkOrder() && touch.networkOrder());

    const auto copy = copiesOf(mouse).front();
    EXPECT_EQ(copy->event().x, 5);
    EXPECT_EQ(copy->event().maxY, 8);
    EXPECT_TRUE(copy->networkOrder());
    EXPECT_EQ(copiesOf(*copy).back()->event().x, 0x05000000);
    EXPECT_EQ(copiesOf(keyboard).front()->event().extra, 0x41U);
    EXPECT_EQ(copiesOf(touch).front()->event().y, 6);
}

TEST(InputMediaBuffer, EventsBuiltInPlaceKeepTheirIntegers) {
    Mouse mouse({.x = 5, .y = 6, .type = 2, .maxX = 0, .maxY = 0}, true, 9);
    Keyboard keyboard({.ch = 0, .type = 1, .extra = 0x41}, true);
    Touch touch({.id = 1, .x = 5, .y = 6, .type = 2}, true, 9);

    EXPECT_EQ(mouse.event().x, 5);
    EXPECT_EQ(keyboard.event().extra, 0x41U);
    EXPECT_EQ(touch.event().y, 6);
    EXPECT_TRUE(mouse.networkOrder() && keyboard.networkOrder() && touch.networkOrder());
}

TEST(InputMediaBuffer, MissingTimestampBecomesNowAndStays) {
    const std::uint64_t before = IMediaBuffer::getNowTimestamp();
    Mouse mouse(0, 0, 0);
    Touch touch(1, 0, 0, 0);
    const std::uint64_t after = IMediaBuffer::getNowTimestamp();
    Keyboard keyboard(1, 0, 0);
    for (IMediaBuffer* buffer : std::vector<IMediaBuffer*>{&mouse, &touch, &keyboard})
        buffer->setTimestamp(after + 77);

    for (const std::uint64_t timestamp : {mouse.getTimestamp(), touch.getTimestamp()}) {
        EXPECT_GE(timestamp, before);
        EXPECT_LE(timestamp, after);
    }
    EXPECT_EQ(keyboard.getTimestamp(), 0U);
}

} // namespace

} // namespace orbelantine
