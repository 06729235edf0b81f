#include "avstack/IInputMediaBufferKeyboard.h"
#include "avstack/IInputMediaBufferMouse.h"
#include "avstack/IInputMediaBufferTouch.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

namespace orbelantine {

namespace {

template <class T>
T at(IMediaBuffer& buffer, std::size_t offset) {
    T value;
    std::memcpy(&value, static_cast<const std::uint8_t*>(buffer.getRawBuffer()) + offset,
                sizeof(T));
    return value;
}

bool networkOrderOf(const boost::shared_ptr<IMediaBuffer>& mouse) {
    return boost::dynamic_pointer_cast<IInputMediaBufferMouse>(mouse)->networkOrder();
}

TEST(InputMediaBuffer, MousePayloadIsReadByOffset) {
    IInputMediaBufferMouse buffer(-2, 70000, IInputMediaBufferMouse::WheelPositive, false, 55, 3,
                                  4);

    EXPECT_EQ(buffer.getType(), 10);
    EXPECT_EQ(buffer.getSize(), 20U);
    EXPECT_EQ(buffer.getTimestamp(), 55U);
    EXPECT_FALSE(buffer.networkOrder());
    EXPECT_EQ(at<std::int32_t>(buffer, 0), -2);
    EXPECT_EQ(at<std::int32_t>(buffer, 4), 70000);
    EXPECT_EQ(at<std::uint8_t>(buffer, 8), 6);
    EXPECT_EQ(at<std::int32_t>(buffer, 12), 3);
    EXPECT_EQ(at<std::int32_t>(buffer, 16), 4);
}

TEST(InputMediaBuffer, KeyboardPayloadIsReadByOffset) {
    IInputMediaBufferKeyboard buffer(0x9D, IInputMediaBufferKeyboard::KeyUp, 0x01020304, false);

    EXPECT_EQ(buffer.getType(), 9);
    EXPECT_EQ(buffer.getSize(), 8U);
    EXPECT_EQ(buffer.getTimestamp(), 0U);
    EXPECT_FALSE(buffer.networkOrder());
    EXPECT_EQ(at<std::uint8_t>(buffer, 0), 0x9D);
    EXPECT_EQ(at<std::uint8_t>(buffer, 1), 1);
    EXPECT_EQ(at<std::uint32_t>(buffer, 4), 0x01020304U);
}

TEST(InputMediaBuffer, TouchPayloadIsReadByOffset) {
    IInputMediaBufferTouch buffer(3, 65535, 1, IInputMediaBufferTouch::Down, false, 55);

    EXPECT_EQ(buffer.getType(), 28);
    EXPECT_EQ(buffer.getSize(), 16U);
    EXPECT_EQ(buffer.getTimestamp(), 55U);
    EXPECT_FALSE(buffer.networkOrder());
    EXPECT_EQ(at<std::uint8_t>(buffer, 0), 3);
    EXPECT_EQ(at<std::int32_t>(buffer, 4), 65535);
    EXPECT_EQ(at<std::int32_t>(buffer, 8), 1);
    EXPECT_EQ(at<std::uint8_t>(buffer, 12), 2);
}

TEST(InputMediaBuffer, MouseConstructorSwapsItsFourIntegersUnlessTold) {
    IInputMediaBufferMouse buffer(5, 6, IInputMediaBufferMouse::Move, true, 1, 7, 8);

    EXPECT_TRUE(buffer.networkOrder());
    EXPECT_EQ(buffer.event().x, 0x05000000);
    EXPECT_EQ(buffer.event().y, 0x06000000);
    EXPECT_EQ(buffer.event().maxX, 0x07000000);
    EXPECT_EQ(buffer.event().maxY, 0x08000000);
    EXPECT_EQ(IInputMediaBufferMouse(5, 6, 0).event().x, 0x05000000);
}

TEST(InputMediaBuffer, KeyboardConstructorSwapsExtraUnlessTold) {
    IInputMediaBufferKeyboard buffer(0, 0, 0x41);
    EXPECT_TRUE(buffer.networkOrder());
    EXPECT_EQ(buffer.event().extra, 0x41000000U);
}

TEST(InputMediaBuffer, TouchConstructorSwapsThePointUnlessTold) {
    IInputMediaBufferTouch buffer(1, 5, 6, 0);
    EXPECT_TRUE(buffer.networkOrder());
    EXPECT_EQ(buffer.event().x, 0x05000000);
    EXPECT_EQ(buffer.event().y, 0x06000000);
}

TEST(InputMediaBuffer, EventsBuiltInPlaceKeepTheirIntegers) {
    IInputMediaBufferMouse mouse({.x = 5, .y = 6, .type = 2, .maxX = 0, .maxY = 0}, true, 9);
    IInputMediaBufferKeyboard keyboard({.ch = 0, .type = 1, .extra = 0x41}, true);
    IInputMediaBufferTouch touch({.id = 1, .x = 5, .y = 6, .type = 2}, true, 9);

    EXPECT_EQ(mouse.event().x, 5);
    EXPECT_EQ(keyboard.event().extra, 0x41U);
    EXPECT_EQ(touch.event().y, 6);
    EXPECT_TRUE(mouse.networkOrder() && keyboard.networkOrder() && touch.networkOrder());
}

TEST(InputMediaBuffer, MissingTimestampBecomesNow) {
    const std::uint64_t before = IMediaBuffer::getNowTimestamp();
    IInputMediaBufferMouse mouse(0, 0, 0);
    IInputMediaBufferTouch touch(1, 0, 0, 0);
    const std::uint64_t after = IMediaBuffer::getNowTimestamp();

    for (const std::uint64_t timestamp : {mouse.getTimestamp(), touch.getTimestamp()}) {
        EXPECT_GE(timestamp, before);
        EXPECT_LE(timestamp, after);
    }
}

TEST(InputMediaBuffer, TimestampIsFixedAtConstruction) {
    IInputMediaBufferMouse mouse(0, 0, 0, false, 9);
    IInputMediaBufferTouch touch(1, 0, 0, 0, false, 9);
    IInputMediaBufferKeyboard keyboard(1, 0, 0);
    for (IMediaBuffer* buffer : std::vector<IMediaBuffer*>{&mouse, &touch, &keyboard})
        buffer->setTimestamp(77);

    EXPECT_EQ(mouse.getTimestamp(), 9U);
    EXPECT_EQ(touch.getTimestamp(), 9U);
    EXPECT_EQ(keyboard.getTimestamp(), 0U);
}

TEST(InputMediaBuffer, PayloadIsTheSameThroughEveryPointer) {
    IInputMediaBufferMouse mouse(1, 2, 0);
    IInputMediaBufferTouch touch(1, 2, 3, 0);
    IInputMediaBufferKeyboard keyboard(1, 0, 0);
    for (IMediaBuffer* buffer : std::vector<IMediaBuffer*>{&mouse, &touch, &keyboard}) {
        ASSERT_NE(buffer->getRawBuffer(), nullptr);
        EXPECT_EQ(buffer->map(), buffer->getRawBuffer());
        EXPECT_EQ(buffer->map(0), buffer->getRawBuffer());
        EXPECT_FALSE(buffer->getRawMediaContext());
        EXPECT_EQ(buffer->getWidth(), 0xFFFFFFFFU);
    }
}

TEST(InputMediaBuffer, CopyInHostOrderIsEqualAndSeparate) {
    IInputMediaBufferMouse source(5, -6, 2, false, 9, 7, 8);
    for (const auto& copy : {source.copy(), source.soft_copy(), source.copy(3, 4)}) {
        EXPECT_NE(copy->getRawBuffer(), source.getRawBuffer());
        EXPECT_EQ(copy->getType(), 10);
        EXPECT_EQ(copy->getTimestamp(), 9U);
        EXPECT_EQ(at<std::int32_t>(*copy, 0), 5);
        EXPECT_EQ(at<std::int32_t>(*copy, 4), -6);
        EXPECT_EQ(at<std::uint8_t>(*copy, 8), 2);
        EXPECT_EQ(at<std::int32_t>(*copy, 12), 7);
        EXPECT_EQ(at<std::int32_t>(*copy, 16), 8);
        EXPECT_FALSE(networkOrderOf(copy));
    }
}

TEST(InputMediaBuffer, CopyInNetworkOrderIsSwappedByTheConstructor) {
    IInputMediaBufferMouse mouse(5, 6, 2, true, 9);
    IInputMediaBufferKeyboard keyboard(0, 1, 0x41, true);
    IInputMediaBufferTouch touch(4, 5, 6, 1, true, 9);
    const auto mouseCopy = mouse.soft_copy();
    const auto keyboardCopy = keyboard.copy();
    const auto touchCopy = touch.copy();

    EXPECT_EQ(at<std::int32_t>(*mouseCopy, 0), 5);
    EXPECT_TRUE(networkOrderOf(mouseCopy));
    EXPECT_EQ(at<std::uint8_t>(*keyboardCopy, 1), 1);
    EXPECT_EQ(at<std::uint32_t>(*keyboardCopy, 4), 0x41U);
    EXPECT_EQ(at<std::uint8_t>(*touchCopy, 0), 4);
    EXPECT_EQ(at<std::int32_t>(*touchCopy, 8), 6);
    EXPECT_EQ(touchCopy->getTimestamp(), 9U);
    EXPECT_EQ(at<std::int32_t>(*mouseCopy->copy(), 0), 0x05000000);
}

} // namespace

} // namespace orbelantine
