// What a peer sends through a pipe, packets good and bad: no more comes out than it has said, in
// its order, and the end comes.

#include "core/common/errors/ErrorCode.h"
#include "core/common/types/linux/FileDescriptor.h"
#include "ipc/pipe/TransferApi.h"
#include "ipc/pipe/linux/PipeWire.h"
#include "tests/fuzz/Input.h"

#include <sys/socket.h>

#include <algorithm>
#include <vector>

namespace orbelantine::fuzz {

namespace {

using Bytes = std::vector<std::uint8_t>;

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
    Bytes said;
    for (int packets = input.byte() % 16; packets > 0; --packets) {
        const Bytes packet = nextPacket(input);
        if (::send(peer.get(), packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT) < 0)
            break;
        if (!packet.empty())
            said.insert(said.end(), packet.begin() + 1, packet.end());
    }
    peer = {};

    const auto api = TransferApi::system();
    static Bytes buffer(4 * pipe_wire::kLargestPiece);
    std::uint32_t error = 0;
    std::size_t heard = 0;
    while (error != win32::kErrorBrokenPipe) {
        // Past the end of the input every read is a large one.
        const std::size_t size =
            input.empty() ? buffer.size() : std::size_t{input.byte()} * input.byte();
        Overlapped overlapped;
        std::uint32_t count = 0;
        const auto begun =
            api->readFile(mine.get(), buffer.data(), static_cast<std::uint32_t>(size), overlapped);
        error = api->getOverlappedResult(mine.get(), overlapped, count, false);
        ORB_FUZZ_EXPECT(begun == error && count <= size && count <= said.size() - heard);
        ORB_FUZZ_EXPECT(std::equal(buffer.begin(),
                                   buffer.begin() + static_cast<std::ptrdiff_t>(count),
                                   said.begin() + static_cast<std::ptrdiff_t>(heard)));
        heard += count;
    }
}

} // namespace

} // namespace orbelantine::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    orbelantine::fuzz::compare({data, size});
    return 0;
}
