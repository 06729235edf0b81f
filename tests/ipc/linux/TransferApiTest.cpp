#include "ipc/pipe/TransferApi.h"

#include "core/common/errors/ErrorCode.h"
#include "core/common/types/linux/FileDescriptor.h"
#include "ipc/pipe/linux/PipeWire.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <future>
#include <iterator>
#include <string>
#include <vector>

namespace orbelantine::test {

namespace {

constexpr std::size_t kPiece = pipe_wire::kLargestPiece;
constexpr std::size_t kMebibyte = std::size_t{1024} * 1024;

/// One end with the calls under test, the other as a bare socket.
class TransferApiTest : public ::testing::Test {
  protected:
    TransferApiTest() {
        int ends[2] = {-1, -1};
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
        mine = FileDescriptor(ends[0]);
        peer = FileDescriptor(ends[1]);
    }

    struct Result {
        std::uint32_t error;
        std::string bytes;

        bool operator==(const Result&) const = default;
    };

    static Result readFrom(TransferApi& api, const FileDescriptor& end, std::size_t size) {
        std::string bytes(size, '?');
        Overlapped overlapped;
        std::uint32_t count = 0;
        const auto begun =
            api.readFile(end.get(), bytes.data(), static_cast<std::uint32_t>(size), overlapped);
        const auto ended = api.getOverlappedResult(end.get(), overlapped, count, false);
        EXPECT_EQ(begun, ended);
        bytes.resize(count);
        return {ended, bytes};
    }

    Result read(std::size_t size) { return readFrom(*api, mine, size); }

    static std::uint32_t writeTo(TransferApi& api, const FileDescriptor& end,
                                 const std::string& bytes) {
        Overlapped overlapped;
        std::uint32_t count = 0;
        const auto size = static_cast<std::uint32_t>(bytes.size());
        const auto begun = api.writeFile(end.get(), bytes.data(), size, overlapped);
        EXPECT_EQ(api.getOverlappedResult(end.get(), overlapped, count, false), begun);
        EXPECT_EQ(count, begun ? 0 : size);
        return begun;
    }

    void sendPacket(const std::string& packet) const {
        ASSERT_EQ(::send(peer.get(), packet.data(), packet.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(packet.size()));
    }

    /// A good packet that carries the sender's own end.
    void sendDescriptor() const {
        char data[] = {static_cast<char>(pipe_wire::kLast), 'x'};
        iovec part{data, sizeof(data)};
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
        msghdr packet{};
        packet.msg_iov = &part;
        packet.msg_iovlen = 1;
        packet.msg_control = control;
        packet.msg_controllen = sizeof(control);
        cmsghdr* const header = CMSG_FIRSTHDR(&packet);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof(int));
        const int carried = peer.get();
        std::copy_n(reinterpret_cast<const char*>(&carried), sizeof(carried),
                    reinterpret_cast<char*>(CMSG_DATA(header)));
        ASSERT_EQ(::sendmsg(peer.get(), &packet, MSG_NOSIGNAL), 2);
    }

    const std::unique_ptr<TransferApi> api = TransferApi::system();
    FileDescriptor mine;
    FileDescriptor peer;
};

std::string patterned(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 31 + i / 251);
    return bytes;
}

} // namespace

TEST_F(TransferApiTest, MessageOfAnySizeComesInReadsThatEndWithIt) {
    const auto other = TransferApi::system();
    for (const std::size_t size :
         {std::size_t{1}, kPiece - 1, kPiece, kPiece + 1, 2 * kPiece, 3 * kPiece + 7, kMebibyte}) {
        for (const std::size_t buffer : {size, size + 1, size / 2 + 1, kPiece, 3 * kPiece - 1}) {
            const std::string message = patterned(size);
            auto writing = std::async(std::launch::async, [&] {
                return writeTo(*other, peer, message) || writeTo(*other, peer, "next");
            });
            std::string got;
            while (got.size() < size) {
                const Result part = read(buffer);
                const std::size_t expected = std::min(buffer, size - got.size());
                ASSERT_EQ(part.bytes.size(), expected) << size << " by " << buffer;
                got += part.bytes;
                ASSERT_EQ(part.error, got.size() < size ? win32::kErrorMoreData : 0);
            }
            EXPECT_TRUE(got == message) << size << " by " << buffer;
            EXPECT_EQ(read(buffer + 4), (Result{0, "next"}));
            EXPECT_FALSE(writing.get());
        }
    }
}

TEST_F(TransferApiTest, ReadWithoutRoomTellsOfAMessageAndTakesNothing) {
    sendPacket(std::string("\0abc", 4));
    EXPECT_EQ(read(0), (Result{win32::kErrorMoreData, ""}));
    EXPECT_EQ(read(2), (Result{win32::kErrorMoreData, "ab"}));
    EXPECT_EQ(read(2), (Result{0, "c"}));
    sendPacket(std::string(1, '\0'));
    EXPECT_EQ(read(2), (Result{0, ""})) << "a message of no bytes";
}

class TransferApiBreachTest : public TransferApiTest, public ::testing::WithParamInterface<int> {
  protected:
    void breakTheRules() const {
        switch (GetParam()) {
        case 0:
            return sendPacket("\2ab");
        case 1:
            return sendPacket("");
        case 2:
            return sendPacket(std::string(1, '\0') + std::string(kPiece + 1, 'a'));
        case 3:
            return sendPacket("\1");
        default:
            return sendDescriptor();
        }
    }
};

TEST_P(TransferApiBreachTest, PeerThatBreaksTheRulesIsHungUpOnForGood) {
    breakTheRules();
    sendPacket(std::string("\0good", 5));
    // Room enough for what is too long.
    EXPECT_EQ(read(2 * kPiece), (Result{win32::kErrorBrokenPipe, ""}));
    EXPECT_EQ(read(10), (Result{win32::kErrorBrokenPipe, ""}));
    EXPECT_EQ(writeTo(*api, mine, "x"), win32::kErrorNoData);
    char byte = 0;
    EXPECT_EQ(::recv(peer.get(), &byte, 1, 0), 0);
    EXPECT_EQ(::send(peer.get(), &byte, 1, MSG_NOSIGNAL), -1);
}

INSTANTIATE_TEST_SUITE_P(Breaches, TransferApiBreachTest, ::testing::Range(0, 5));

TEST_F(TransferApiTest, PieceOfNothingInALongMessageBreaksTheRulesToo) {
    sendPacket("\1begun");
    sendPacket(std::string("\0", 1));
    EXPECT_EQ(read(5), (Result{win32::kErrorMoreData, "begun"}));
    EXPECT_EQ(read(5), (Result{win32::kErrorBrokenPipe, ""}));
}

TEST_F(TransferApiTest, PeerThatGoesAmidAMessageLeavesNoHalfOfIt) {
    sendPacket("\1begun");
    auto reading = std::async(std::launch::async, [&] { return read(100); });
    peer = {};
    EXPECT_EQ(reading.get(), (Result{win32::kErrorBrokenPipe, ""}));
    EXPECT_EQ(read(100), (Result{win32::kErrorBrokenPipe, ""}));
    EXPECT_EQ(writeTo(*api, mine, "x"), win32::kErrorNoData);
}

TEST_F(TransferApiTest, CancelFreesReaderAndWriterForGood) {
    auto reading = std::async(std::launch::async, [&] { return read(100); });
    // More than the system keeps for a peer that reads nothing.
    auto writing = std::async(std::launch::async,
                              [&] { return writeTo(*api, mine, std::string(4 * kMebibyte, 'x')); });
    api->cancelIo(mine.get());
    EXPECT_EQ(reading.get(), (Result{win32::kErrorOperationAborted, ""}));
    EXPECT_EQ(writing.get(), win32::kErrorOperationAborted);
    EXPECT_EQ(read(100), (Result{win32::kErrorOperationAborted, ""}));
    EXPECT_EQ(writeTo(*api, mine, "x"), win32::kErrorOperationAborted);
}

} // namespace orbelantine::test
