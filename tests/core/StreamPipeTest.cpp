#include "core/common/types/StreamPipe.h"

#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace orbelantine::test {
namespace {

/// Holds "abcdefgh" in chunks, the first of them read in part and one of them empty.
class StreamPipeTest : public ::testing::Test {
  protected:
    StreamPipeTest() {
        for (const char* chunk : {"--ab", "", "cde", "fgh"})
            write(chunk);
        EXPECT_TRUE(mPipe.remove(2));
    }

    static const std::uint8_t* bytesOf(std::string_view text) {
        return reinterpret_cast<const std::uint8_t*>(text.data());
    }

    void write(std::string_view text) { mPipe.write(bytesOf(text), text.size()); }

    std::ptrdiff_t find(std::string_view pattern, std::size_t start = 0) {
        return mPipe.find(bytesOf(pattern), pattern.size(), start);
    }

    bool read(std::size_t size) { return mPipe.read(mBuffer, size); }

    bool peek(std::size_t size, std::size_t offset) { return mPipe.peek(mBuffer, size, offset); }

    std::string buffer() { return reinterpret_cast<const char*>(mBuffer); }

    StreamPipe mPipe;
    std::uint8_t mBuffer[16] = {};
    CapturedLog mLog{kLogTrace, "orbelantine::StreamPipe::"};
};

TEST_F(StreamPipeTest, ReadsInOrderAcrossChunksAtMostWhatThereIs) {
    EXPECT_TRUE(read(1) && buffer() == "a");
    EXPECT_TRUE(read(5) && buffer() == "bcdef");
    EXPECT_EQ(mPipe.size(), 2U);
    EXPECT_EQ(mLog.told(), Texts());
    EXPECT_FALSE(read(10));
    EXPECT_EQ(mLog.told(),
              Texts{"error read() Not enough data - 2 bytes copied, 10 bytes requested"});
    EXPECT_TRUE(buffer().starts_with("gh"));
    EXPECT_EQ(mPipe.size(), 0U);
    EXPECT_TRUE(read(0));
    EXPECT_EQ(mLog.told(), Texts());
}

TEST_F(StreamPipeTest, PeekTakesNothingAndRemoveAllOrNothing) {
    EXPECT_TRUE(peek(8, 0) && buffer() == "abcdefgh");
    EXPECT_FALSE(peek(0, 0) || peek(9, 0) || peek(4, 6) || peek(1, SIZE_MAX));
    EXPECT_EQ(mPipe.size(), 8U);
    const std::string invalid = "error peek() Invalid size parameter - 8 bytes available, ";
    EXPECT_EQ(mLog.told(),
              (Texts{invalid + "0 bytes requested", invalid + "9 bytes requested",
                     "debug peek() Not enough data - 2 bytes copied, 4 bytes requested",
                     "debug peek() Not enough data - 0 bytes copied, 1 bytes requested"}));
    EXPECT_FALSE(mPipe.remove(0) || mPipe.remove(9));
    EXPECT_TRUE(mPipe.remove(4));
    EXPECT_TRUE(peek(4, 0) && buffer() == "efghefgh");
    const std::string wrong = "error remove() Invalid size - 8 bytes available, ";
    EXPECT_EQ(mLog.told(), (Texts{wrong + "0 bytes requested", wrong + "9 bytes requested"}));
}

TEST_F(StreamPipeTest, FindsAcrossChunksAndLogsWhyItCannotLook) {
    write("degdeh");
    EXPECT_EQ(find("bcdef"), 1);
    EXPECT_EQ(find("deh"), 11);
    EXPECT_EQ(find("e", 4), 4);
    EXPECT_EQ(find("a", 1), -1);
    EXPECT_EQ(mLog.told(), Texts());
    for (const auto& [pattern, start] : {std::pair{"", 0U}, {"abcdefghidegdeh", 0U}, {"hi", 13U}})
        EXPECT_EQ(find(pattern, start), -1) << pattern;
    const std::string invalid = "debug find() Invalid size - 14 bytes available, ";
    EXPECT_EQ(mLog.told(),
              (Texts{invalid + "0 bytes requested", invalid + "15 bytes requested",
                     "debug peek() Not enough data - 0 bytes copied, 1 bytes requested",
                     "debug find() Unable to peek data - offset 14, size 1"}));
}

TEST_F(StreamPipeTest, WriteSetsTheEventForOneWaitAndClearForgetsHowFarAChunkWasRead) {
    EXPECT_TRUE(mPipe.event().wait(0));
    EXPECT_FALSE(mPipe.event().wait(0));
    EXPECT_FALSE(StreamPipe().event().wait(0));
    mPipe.clear();
    write("xyz");
    EXPECT_TRUE(read(3) && buffer() == "xyz");
}

} // namespace
} // namespace orbelantine::test
