// What a peer sends through a pipe, packets good and bad, against the messages that it amounts to.

#include "core/common/errors/ErrorCode.h"
#include "core/common/types/linux/FileDescriptor.h"
#include "ipc/pipe/TransferApi.h"
#include "ipc/pipe/linux/PipeWire.h"
#include "tests/fuzz/Input.h"

#include <sys/socket.h>

#include <deque>
#include <vector>

namespace orbelantine::fuzz {

namespace {

using Bytes = std::vector<std::uint8_t>;

/// The rules of packets, as plainly as can be.
class Messages {
  public:
    void receive(const Bytes& packet) {
        if (mBroken)
            return;
        const bool begins = mMessages.empty() || mMessages.back().isWhole;
        const std::size_t size = packet.empty() ? 0 : packet.size() - 1;
        const bool isLast = !packet.empty() && packet[0] == pipe_wire::kLast;
        const bool isMore = !packet.empty() && packet[0] == pipe_wire::kMoreFollows;
        mBroken = (!isLast && !isMore) || size > pipe_wire::kLargestPiece ||
                  (size == 0 && (isMore || !begins));
        if (mBroken)
            return;
        if (begins)
            mMessages.emplace_back();
        Message& message = mMessages.back();
        message.bytes.insert(message.bytes.end(), packet.begin() + 1, packet.end());
        message.isWhole = isLast;
    }

    std::uint32_t read(std::size_t size, Bytes& bytes) {
        bytes.clear();
        if (mMessages.empty())
            return win32::kErrorBrokenPipe;
        Message& message = mMessages.front();
        const std::size_t left = message.bytes.size() - message.taken;
        if (!message.isWhole && size > left) {
            mMessages.clear();
            return win32::kErrorBrokenPipe;
        }
        const std::size_t count = std::min(size, left);
        const auto from = message.bytes.begin() + static_cast<std::ptrdiff_t>(message.taken);
        bytes.assign(from, from + static_cast<std::ptrdiff_t>(count));
        message.taken += count;
        if (!message.isWhole || count < left)
            return win32::kErrorMoreData;
        mMessages.pop_front();
        return win32::kErrorSuccess;
    }

  private:
    struct Message {
        Bytes bytes;
        std::size_t taken = 0;
        bool isWhole = false;
    };

    std::deque<Message> mMessages;
    bool mBroken = false;
};

/// Mostly good ones, some of them as large as they may be.
Bytes nextPacket(Input& input) {
    const std::uint8_t kind = input.byte();
    const auto content = input.bytes(input.byte());
    if (kind >= 250)
        return {content.begin(), content.end()};
    Bytes packet{static_cast<std::uint8_t>(kind % 2 ? pipe_wire::kMoreFollows : pipe_wire::kLast)};
    packet.insert(packet.end(), content.begin(), content.end());
    if (kind >= 240)
        packet.resize(pipe_wire::kLargestPiece + kind - 244, kind);
    return packet;
}

void compare(Input input) {
    int ends[2] = {-1, -1};
    ORB_FUZZ_EXPECT(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) == 0);
    const FileDescriptor mine(ends[0]);
    FileDescriptor peer(ends[1]);
    Messages expected;
    for (int packets = input.byte() % 16; packets > 0; --packets) {
        const Bytes packet = nextPacket(input);
        if (::send(peer.get(), packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT) < 0)
            break;
        expected.receive(packet);
    }
    peer = {};

    const auto api = TransferApi::system();
    static Bytes buffer(4 * pipe_wire::kLargestPiece);
    std::uint32_t error = 0;
    while (error != win32::kErrorBrokenPipe) {
        // Past the end of the input every read is a large one.
        const std::size_t size =
            input.empty() ? buffer.size() : std::size_t{input.byte()} * input.byte();
        Bytes bytes;
        Overlapped overlapped;
        std::uint32_t count = 0;
        const auto begun =
            api->readFile(mine.get(), buffer.data(), static_cast<std::uint32_t>(size), overlapped);
        error = api->getOverlappedResult(mine.get(), overlapped, count, false);
        ORB_FUZZ_EXPECT(begun == error && count <= size);
        ORB_FUZZ_EXPECT(error == expected.read(size, bytes));
        ORB_FUZZ_EXPECT(std::equal(bytes.begin(), bytes.end(), buffer.begin(),
                                   buffer.begin() + static_cast<std::ptrdiff_t>(count)));
    }
}

} // namespace

} // namespace orbelantine::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    orbelantine::fuzz::compare({data, size});
    return 0;
}
