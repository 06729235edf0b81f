#include "avstack/RawMediaBuffer.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <vector>

namespace orbelantine {

namespace {

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

TEST(RawMediaBuffer, ShowsItsBytesThroughEveryPointer) {
    std::uint8_t bytes[] = {1, 2, 3};
    RawMediaBuffer buffer(7, 3, 100, bytes, false);
    EXPECT_EQ(buffer.map(), bytes);
    EXPECT_EQ(buffer.map(1), bytes);
    EXPECT_EQ(buffer.getRawBuffer(), bytes);
    EXPECT_EQ(buffer.getSize(), 3U);
}

TEST(RawMediaBuffer, CopyHasStorageOfItsOwn) {
    Bytes bytes{1, 0, 3};
    const auto user = [&] {
        return boost::make_shared<RawMediaBuffer>(7, 3, 100, bytes.data(), false);
    };
    for (const bool owns : {true, false}) {
        auto source = owns ? makeOwner() : user();
        const auto copy = source->copy();
        static_cast<std::uint8_t*>(source->map())[0] = 9;
        source.reset();
        EXPECT_EQ(bytesOf(*copy), (Bytes{1, 0, 3})) << owns;
    }
}

TEST(RawMediaBuffer, CopyOfNothingSucceeds) {
    RawMediaBuffer source(7, 0, 100);
    const auto copy = source.copy();

    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->getSize(), 0U);
    EXPECT_EQ(copy->getRawBuffer(), nullptr);
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

} // namespace

} // namespace orbelantine
