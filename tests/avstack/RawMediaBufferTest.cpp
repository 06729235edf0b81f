#include "avstack/RawMediaBuffer.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <vector>

namespace orbelantine {

namespace {

using Bytes = std::vector<std::uint8_t>;

boost::shared_ptr<RawMediaBuffer> makeOwner(std::initializer_list<std::uint8_t> bytes) {
    const auto buffer =
        boost::make_shared<RawMediaBuffer>(7, static_cast<std::uint32_t>(bytes.size()), 100);
    std::copy(bytes.begin(), bytes.end(), static_cast<std::uint8_t*>(buffer->map()));
    return buffer;
}

Bytes bytesOf(IMediaBuffer& buffer) {
    const auto* const data = static_cast<const std::uint8_t*>(buffer.getRawBuffer());
    return Bytes(data, data + buffer.getSize());
}

TEST(RawMediaBuffer, ShowsItsBytesThroughEveryPointer) {
    std::uint8_t bytes[] = {1, 2, 3};
    RawMediaBuffer buffer(7, 3, 100, bytes, false);

    EXPECT_EQ(buffer.map(), bytes);
    EXPECT_EQ(buffer.map(1), bytes);
    EXPECT_EQ(buffer.getRawBuffer(), bytes);
    EXPECT_EQ(buffer.getType(), 7);
    EXPECT_EQ(buffer.getSize(), 3U);
    EXPECT_EQ(buffer.getTimestamp(), 100U);
    EXPECT_FALSE(buffer.getRawMediaContext());
}

TEST(RawMediaBuffer, KeepsASetTimestamp) {
    RawMediaBuffer buffer(7, 0, 100);
    buffer.setTimestamp(101);
    EXPECT_EQ(buffer.getTimestamp(), 101U);
}

TEST(RawMediaBuffer, CopyHasStorageOfItsOwn) {
    auto source = makeOwner({1, 2, 3});
    const auto copy = source->copy();
    static_cast<std::uint8_t*>(source->map())[0] = 9;
    source.reset();

    EXPECT_EQ(bytesOf(*copy), (Bytes{1, 2, 3}));
    EXPECT_EQ(copy->getType(), 7);
    EXPECT_EQ(copy->getTimestamp(), 100U);
}

TEST(RawMediaBuffer, CopyOfForeignBytesOwnsItsOwn) {
    Bytes bytes{1, 2, 3};
    auto source = boost::make_shared<RawMediaBuffer>(7, 3, 100, bytes.data(), false);
    const auto copy = source->copy();
    source.reset();
    bytes.assign(3, 0);

    EXPECT_EQ(bytesOf(*copy), (Bytes{1, 2, 3}));
}

TEST(RawMediaBuffer, CopyOfNothingSucceeds) {
    RawMediaBuffer source(7, 0, 100);
    const auto copy = source.copy();

    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->getSize(), 0U);
    EXPECT_EQ(copy->getRawBuffer(), nullptr);
}

TEST(RawMediaBuffer, SoftCopySharesTheBytesAndOutlivesItsSource) {
    auto source = makeOwner({1, 2, 3});
    void* const data = source->map();
    const auto copy = source->soft_copy();
    EXPECT_EQ(source->map(), data);
    source.reset();

    EXPECT_EQ(copy->map(), data);
    EXPECT_EQ(bytesOf(*copy), (Bytes{1, 2, 3}));
}

TEST(RawMediaBuffer, SoftCopyOfForeignBytesDoesNotOwnThem) {
    std::uint8_t bytes[] = {1, 2, 3};
    RawMediaBuffer source(7, 3, 100, bytes, false);
    source.soft_copy().reset();

    EXPECT_EQ(bytesOf(source), (Bytes{1, 2, 3}));
}

TEST(RawMediaBuffer, CopiesTakeTheirArguments) {
    const auto source = makeOwner({1});
    for (const auto& copy : {source->copy(8, 200), source->soft_copy(8, 200)}) {
        EXPECT_EQ(copy->getType(), 8);
        EXPECT_EQ(copy->getTimestamp(), 200U);
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

} // namespace

} // namespace orbelantine
