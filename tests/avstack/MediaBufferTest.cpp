#include "avstack/IInputMediaBufferKeyboard.h"
#include "avstack/IInputMediaBufferMouse.h"
#include "avstack/IInputMediaBufferTouch.h"
#include "avstack/IMediaBuffer.h"
#include "avstack/RawMediaBuffer.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <vector>

namespace orbelantine {
namespace {

TEST(IMediaBuffer, BaseAnswersNothing) {
    IMediaBuffer buffer;
    buffer.unmap();
    buffer.setTimestamp(5);

    EXPECT_FALSE(buffer.copy());
    EXPECT_FALSE(buffer.soft_copy(1, 2));
    EXPECT_EQ(buffer.map(), nullptr);
    EXPECT_EQ(buffer.map(0), nullptr);
    EXPECT_EQ(buffer.getRawBuffer(), nullptr);
    EXPECT_FALSE(buffer.getRawMediaContext());
    EXPECT_EQ(buffer.getType(), 0);
    EXPECT_EQ(buffer.getWidth(), 0xFFFFFFFFU);
    EXPECT_EQ(buffer.getHeight(), 0xFFFFFFFFU);
    EXPECT_EQ(buffer.getStride(), 0xFFFFFFFFU);
    EXPECT_EQ(buffer.getSize(), 0xFFFFFFFFU);
    EXPECT_EQ(buffer.getTimestamp(), 0xFFFFFFFFFFFFFFFFULL);
}

TEST(IMediaBuffer, NowCountsMillisecondsOfTheMonotonicClock) {
    using Clock = std::chrono::steady_clock;
    const auto millisecondsSince = [](Clock::time_point start) {
        const auto elapsed = Clock::now() - start;
        return std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
    };

    const Clock::time_point outerStart = Clock::now();
    const std::uint64_t first = IMediaBuffer::getNowTimestamp();
    const Clock::time_point innerStart = Clock::now();
    while (millisecondsSince(innerStart) < 4) {
    }
    const std::uint64_t passed = IMediaBuffer::getNowTimestamp() - first;
    EXPECT_GE(passed, 4U);
    EXPECT_LE(passed, static_cast<std::uint64_t>(millisecondsSince(outerStart)) + 1);
}

using Bytes = std::vector<std::uint8_t>;

boost::shared_ptr<RawMediaBuffer> makeOwner() {
    const auto buffer = boost::make_shared<RawMediaBuffer>(7, 3U, 100U);
    auto* const bytes = static_cast<std::uint8_t*>(buffer->map());
    EXPECT_EQ(Bytes(bytes, bytes + 3), Bytes(3));
    bytes[0] = 1;
    bytes[2] = 3;
    return buffer;
}

Bytes bytesOf(IMediaBuffer& buffer) {
    const auto* const data = static_cast<const std::uint8_t*>(buffer.getRawBuffer());
    return Bytes(data, data + buffer.getSize());
}

TEST(RawMediaBuffer, CopyHasStorageOfItsOwn) {
    Bytes bytes{1, 0, 3};
    const auto user = boost::make_shared<RawMediaBuffer>(7, 3, 100, bytes.data(), false);
    EXPECT_EQ(user->map(), bytes.data());
    EXPECT_EQ(user->map(1), bytes.data());
    for (auto source : {makeOwner(), user}) {
        const auto copy = source->copy();
        static_cast<std::uint8_t*>(source->map())[0] = 9;
        source.reset();
        EXPECT_EQ(bytesOf(*copy), (Bytes{1, 0, 3}));
    }
    const auto nothing = RawMediaBuffer(7, 0, 100).copy();
    EXPECT_EQ(nothing->getSize(), 0U);
    EXPECT_EQ(nothing->getRawBuffer(), nullptr);
}

TEST(RawMediaBuffer, SoftCopySharesTheBytesAndTakesTheirOwnership) {
    auto source = makeOwner();
    void* const data = source->map();
    const auto copy = source->soft_copy();
    EXPECT_EQ(source->map(), data);
    source.reset();
    EXPECT_EQ(copy->map(), data);
    EXPECT_EQ(bytesOf(*copy), (Bytes{1, 0, 3}));

    std::uint8_t bytes[] = {1, 2, 3};
    RawMediaBuffer user(7, 3, 100, bytes, false);
    user.soft_copy().reset();
    EXPECT_EQ(bytesOf(user), (Bytes{1, 2, 3}));
}

TEST(RawMediaBuffer, CopiesTakeTheirArgumentsElseTheSourcesValues) {
    const auto source = makeOwner();
    source->setTimestamp(101);
    const std::tuple<boost::shared_ptr<IMediaBuffer>, int, unsigned> copies[] = {
        {source->copy(), 7, 101},
        {source->copy(8, 200), 8, 200},
        {source->soft_copy(), 7, 101},
        {source->soft_copy(8, 200), 8, 200}};
    for (const auto& [copy, type, timestamp] : copies) {
        EXPECT_EQ(copy->getType(), type);
        EXPECT_EQ(copy->getTimestamp(), timestamp);
    }
}

TEST(RawMediaBuffer, CopiesReplaceTheTwoHighestTimestampsByNow) {
    for (const std::uint64_t none : {kKeepTimestamp, kKeepTimestamp - 1}) {
        RawMediaBuffer source(7, 0, none);
        const std::uint64_t before = IMediaBuffer::getNowTimestamp();
        for (const auto& copy : {source.copy(), source.soft_copy(), source.copy(7, none)}) {
            EXPECT_GE(copy->getTimestamp(), before);
            EXPECT_LE(copy->getTimestamp(), IMediaBuffer::getNowTimestamp());
        }
    }
}

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
    // Built in place, they stay as they are.
    EXPECT_EQ(Mouse({.x = 5, .y = 6, .type = 2, .maxX = 0, .maxY = 0}, true, 9).event().x, 5);
    EXPECT_EQ(Keyboard({.ch = 0, .type = 1, .extra = 0x41}, true).event().extra, 0x41U);
    EXPECT_EQ(Touch({.id = 1, .x = 5, .y = 6, .type = 2}, true, 9).event().y, 6);
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
