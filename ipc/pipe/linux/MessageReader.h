#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace orbelantine {

/// Puts the messages of a connected socket together from their pieces. A peer that breaks the rules
/// ends the connection for good. One thread reads.
class MessageReader {
  public:
    MessageReader();

    /// Blocks until the buffer is full or the message at its end. 0 with a message's end, 234 where
    /// some of it is left for the next read, 109 where no more will come.
    [[nodiscard]] std::uint32_t read(int socket, std::span<std::byte> buffer, std::size_t& count);

  private:
    [[nodiscard]] bool receivePiece(int socket, std::span<std::byte> buffer, std::size_t& count);
    std::size_t takeRest(std::span<std::byte> buffer);

    // What of the last piece did not fit its reader's buffer.
    const std::unique_ptr<std::byte[]> mMemory;
    std::span<std::byte> mRest;
    bool mMoreFollows = false;
    bool mBroken = false;
};

} // namespace orbelantine
