#pragma once

#include "tools/device_socket/Protocol.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <utility>

namespace orbelantine::device {

/// Reads the packets of one device handle without waiting.
class PacketReader {
  public:
    enum class Result { Packet, TooLong, Nothing, End };

    /// `hungUp`: poll() has told of the hang-up.
    [[nodiscard]] Result read(int socket, bool hungUp) {
        ssize_t size = 0;
        do
            size = ::recv(socket, mBuffer.data(), mBuffer.size(), MSG_DONTWAIT | MSG_TRUNC);
        while (size < 0 && errno == EINTR);
        if (size < 0)
            return errno == EAGAIN ? Result::Nothing : Result::End;
        // An empty packet reads as the end does, but its sender is still there.
        if (size == 0 && hungUp)
            return Result::End;
        if (std::cmp_greater(size, mBuffer.size()))
            return Result::TooLong;
        mSize = static_cast<std::size_t>(size);
        return Result::Packet;
    }

    /// The packet last read.
    [[nodiscard]] Bytes packet() const { return Bytes(mBuffer).first(mSize); }

  private:
    std::array<std::uint8_t, kMaxPacket> mBuffer;
    std::size_t mSize = 0;
};

} // namespace orbelantine::device
