#include "avstack/IMediaBuffer.h"

#include <gtest/gtest.h>

#include <chrono>

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
    const std::uint64_t second = IMediaBuffer::getNowTimestamp();

    EXPECT_GE(second - first, 4U);
    EXPECT_LE(second - first, static_cast<std::uint64_t>(millisecondsSince(outerStart)) + 1);
}

} // namespace

} // namespace orbelantine
