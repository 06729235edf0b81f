#include "ipc/pipe/linux/MessageReader.h"

#include "core/common/errors/ErrorCode.h"
#include "ipc/pipe/linux/PipeWire.h"

#include <sys/uio.h>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace orbelantine {

namespace wire = pipe_wire;

MessageReader::MessageReader()
    : mMemory(std::make_unique_for_overwrite<std::byte[]>(wire::kLargestPiece)) {}

std::uint32_t MessageReader::read(int socket, std::span<std::byte> buffer, std::size_t& count) {
    const bool begins = mRest.empty() && !mMoreFollows;
    count = takeRest(buffer);
    // A read without a buffer waits for a message too.
    if (begins && !receivePiece(socket, buffer, count))
        return win32::kErrorBrokenPipe;
    while (mMoreFollows && count < buffer.size())
        if (!receivePiece(socket, buffer, count))
            return win32::kErrorBrokenPipe;
    return mMoreFollows || !mRest.empty() ? win32::kErrorMoreData : win32::kErrorSuccess;
}

// Without room for control data the system itself closes the descriptors that a packet may carry.
bool MessageReader::receivePiece(int socket, std::span<std::byte> buffer, std::size_t& count) {
    unsigned char lead = 0;
    const auto room = buffer.subspan(count);
    iovec parts[] = {{&lead, 1}, {room.data(), room.size()}, {mMemory.get(), wire::kLargestPiece}};
    msghdr packet{};
    packet.msg_iov = parts;
    packet.msg_iovlen = std::size(parts);
    const auto received =
        mBroken ? 0 : wire::uninterrupted([&] { return ::recvmsg(socket, &packet, 0); });
    const std::size_t size = received > 0 ? static_cast<std::size_t>(received) - 1 : 0;
    const bool continues = mMoreFollows || lead == wire::kMoreFollows;
    mBroken = received <= 0 || (packet.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) != 0 ||
              lead > wire::kMoreFollows || size > wire::kLargestPiece || (continues && size == 0);
    if (mBroken) {
        ::shutdown(socket, SHUT_RDWR);
        return false;
    }
    mMoreFollows = lead == wire::kMoreFollows;
    const std::size_t fitting = std::min(size, room.size());
    mRest = {mMemory.get(), size - fitting};
    count += fitting;
    return true;
}

std::size_t MessageReader::takeRest(std::span<std::byte> buffer) {
    const std::size_t size = std::min(mRest.size(), buffer.size());
    if (size > 0)
        std::memcpy(buffer.data(), mRest.data(), size);
    mRest = mRest.subspan(size);
    return size;
}

} // namespace orbelantine
