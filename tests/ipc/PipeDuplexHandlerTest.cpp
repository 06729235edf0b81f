#include "ipc/pipe/PipeDuplexHandler.h"

#include "tests/ipc/FakeTransferApi.h"
#include "tests/ipc/HandlerCalls.h"

#include <boost/predef/os/windows.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <future>
#include <vector>

namespace orbelantine::test {
namespace {

/// The same bytes for each writer, whatever the sizes of its messages.
char byteAt(std::size_t index) {
    return static_cast<char>(index * 31 + index / 251);
}

std::string bytesFrom(std::size_t index, std::size_t size) {
    std::string text(size, '\0');
    std::ranges::generate(text, [&] { return byteAt(index++); });
    return text;
}

/// Writes messages of various sizes until one fails; `limit` of them at most.
error_code writeMessages(PipeDuplexHandler& handler, int limit) {
    std::size_t index = 0;
    for (int i = 0; i < limit; ++i) {
        const std::string message = bytesFrom(index, 1 + static_cast<std::size_t>(i) * 37 % 700);
        if (const error_code ec = writeAll(handler, message))
            return ec;
        index += message.size();
    }
    return {};
}

std::size_t sizeOfMessages(int count) {
    std::size_t size = 0;
    for (int i = 0; i < count; ++i)
        size += 1 + static_cast<std::size_t>(i) * 37 % 700;
    return size;
}

/// Reads until a read fails, or `limit` bytes are there; `index` tells how far it is.
error_code readBytes(PipeDuplexHandler& handler, std::size_t limit,
                     std::atomic<std::size_t>& index) {
    for (int i = 0; index < limit; ++i) {
        error_code ec;
        const std::string text = readUpTo(handler, 1 + i * 53 % 900, ec);
        if (ec)
            return ec;
        EXPECT_EQ(text, bytesFrom(index, text.size()));
        index += text.size();
        index.notify_all();
    }
    return {};
}

void waitUntilAtLeast(const std::atomic<std::size_t>& index, std::size_t wanted) {
    for (std::size_t seen = index; seen < wanted; seen = index)
        index.wait(seen);
}

template <class Pair>
class DuplexHandlerTest : public testing::Test {
  protected:
    Pair mPair;
    PipeDuplexHandler mServer{"server_endoint", &mPair.end(kServer), mPair.api(kServer)};
    PipeDuplexHandler mClient{"client_endpoint", &mPair.end(kClient), mPair.api(kClient)};

    void TearDown() override {
        mServer.teardown();
        mClient.teardown();
    }
};

struct PairNames {
    template <class Pair>
    static std::string GetName(int) {
        return std::is_same_v<Pair, FakePair> ? "InMemory" : "OfTheSystem";
    }
};

using Pairs = testing::Types<PipePair, FakePair>;
TYPED_TEST_SUITE(DuplexHandlerTest, Pairs, PairNames);

TYPED_TEST(DuplexHandlerTest, MessageComesInPiecesThatFitTheBuffer) {
    error_code ec = kUntouched;
    EXPECT_FALSE(writeAll(this->mClient, "0123456789"));
    EXPECT_FALSE(writeAll(this->mClient, "next"));
    EXPECT_EQ(readUpTo(this->mServer, 4, ec), "0123");
    EXPECT_EQ(ec, error_code());
    EXPECT_EQ(readUpTo(this->mServer, 4, ec), "4567");
    EXPECT_EQ(ec, error_code());
    EXPECT_EQ(readUpTo(this->mServer, 100, ec), "89");
    EXPECT_EQ(readUpTo(this->mServer, 100, ec), "next");
    EXPECT_EQ(ec, error_code());
}

TYPED_TEST(DuplexHandlerTest, MessageWakesTheReader) {
    error_code ec = kUntouched;
    auto text = startCall([&] { return readUpTo(this->mClient, 100, ec); });
    EXPECT_FALSE(writeAll(this->mServer, "hello"));
    EXPECT_EQ(text.get(), "hello");
    EXPECT_FALSE(ec);
}

TYPED_TEST(DuplexHandlerTest, NothingToWriteLeavesTheErrorAloneButForATornDownEnd) {
    EXPECT_EQ(writeAll(this->mClient, ""), kUntouched);
    this->mClient.teardown();
    EXPECT_EQ(writeAll(this->mClient, ""), kAborted);
}

TYPED_TEST(DuplexHandlerTest, EndServesOnceItIsConnected) {
    PipeDuplexHandler::Pipe& end = this->mPair.end(kClient);
    const PipeHandle later = end.exchange(kInvalidPipeHandle);
    error_code ec;
    EXPECT_EQ(readUpTo(this->mClient, 10, ec), "");
    EXPECT_EQ(ec, kAborted);
    EXPECT_EQ(writeAll(this->mClient, "early"), kAborted);
    EXPECT_EQ(this->mClient.writeSome("early", 5, ec), 0);
    EXPECT_EQ(ec, kAborted);
    end = later;
    EXPECT_FALSE(writeAll(this->mClient, "now"));
    EXPECT_EQ(readUpTo(this->mServer, 10, ec), "now");
}

TYPED_TEST(DuplexHandlerTest, EndThatWasNeverConnectedIsTornDown) {
    const PipeDuplexHandler::Pipe end = kInvalidPipeHandle;
    PipeDuplexHandler handler("client_endpoint", &end, this->mPair.api(kClient));
    handler.teardown();
    handler.teardown();
    error_code ec;
    EXPECT_EQ(readUpTo(handler, 10, ec), "");
    EXPECT_EQ(ec, kAborted);
}

TYPED_TEST(DuplexHandlerTest, PeerThatGoesFailsTheCallsAndLeavesTheEndAlive) {
    EXPECT_FALSE(writeAll(this->mServer, "last words"));
    auto first = startCall([&] {
        error_code ec;
        EXPECT_EQ(readUpTo(this->mClient, 100, ec), "last words");
        EXPECT_EQ(readUpTo(this->mClient, 100, ec), "");
        return ec.value();
    });
    this->mServer.teardown();
    this->mPair.close(kServer);
    const int brokenPipe = static_cast<int>(win32::kErrorBrokenPipe);
    const int failedOnTheWay = static_cast<int>(win32::kErrorFileNotFound);
    const int code = first.get();
    EXPECT_TRUE(code == brokenPipe || code == failedOnTheWay) << code;
    error_code ec;
    EXPECT_EQ(readUpTo(this->mClient, 100, ec), "");
    EXPECT_EQ(ec.value(), brokenPipe);
}

TYPED_TEST(DuplexHandlerTest, ReadersAndWritersOfBothEndsRunAtOnce) {
    // Wine hands each byte over by its server, and needs half a minute for as many as Linux.
    constexpr int kOfTheSystem = BOOST_OS_WINDOWS ? 300 : 100'000;
    constexpr int kMessages = std::is_same_v<TypeParam, PipePair> ? kOfTheSystem : 3'000;
    const std::size_t size = sizeOfMessages(kMessages);
    const auto both = [&](PipeDuplexHandler& handler) {
        auto written = startCall([&] { return writeMessages(handler, kMessages); });
        std::atomic<std::size_t> index = 0;
        EXPECT_FALSE(readBytes(handler, size, index));
        EXPECT_FALSE(written.get());
    };
    auto client = startCall([&] { both(this->mClient); });
    both(this->mServer);
    client.get();
}

TYPED_TEST(DuplexHandlerTest, TeardownAtAnyMomentEndsTheCallsOfItsEnd) {
    for (std::size_t round = 0; round < 100; ++round) {
        TypeParam pair;
        PipeDuplexHandler server("server_endoint", &pair.end(kServer), pair.api(kServer));
        PipeDuplexHandler client("client_endpoint", &pair.end(kClient), pair.api(kClient));
        const std::array ends{&server, &client};
        std::array<std::atomic<std::size_t>, 2> indices{};
        std::array<std::future<error_code>, 2> readers;
        std::array<std::future<error_code>, 2> writers;
        for (const Side side : {kServer, kClient}) {
            readers[side] =
                startCall([&, side] { return readBytes(*ends[side], SIZE_MAX, indices[side]); });
            writers[side] = startCall([&, side] { return writeMessages(*ends[side], INT_MAX); });
        }
        const Side first = round % 2 == 0 ? kServer : kClient;
        const Side second = round % 2 == 0 ? kClient : kServer;
        waitUntilAtLeast(indices[second], round * 13 % 500);
        ends[first]->teardown();
        EXPECT_EQ(readers[first].get(), kAborted);
        EXPECT_EQ(writers[first].get(), kAborted);
        ends[second]->teardown();
        EXPECT_TRUE(readers[second].get());
        EXPECT_TRUE(writers[second].get());
    }
}

TYPED_TEST(DuplexHandlerTest, BlockedWriterIsReleased) {
    auto blocked = startCall([&] { return writeMessages(this->mServer, INT_MAX); });
    error_code ec;
    EXPECT_EQ(readUpTo(this->mClient, 1, ec).size(), 1u);
    this->mServer.teardown();
    EXPECT_EQ(blocked.get(), kAborted);
}

} // namespace
} // namespace orbelantine::test
