#pragma once

#include "core/common/run/WindowsEvent.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <span>
#include <vector>

namespace orbelantine {

/// A queue of bytes, kept in the chunks in which they were written. Any thread may call. Positions
/// count from the oldest byte that wasn't read yet.
class StreamPipe {
  public:
    StreamPipe() = default;
    StreamPipe(const StreamPipe&) = delete;
    StreamPipe& operator=(const StreamPipe&) = delete;
    virtual ~StreamPipe() = default;

    /// Appends a copy of the bytes and sets the event.
    void write(const std::uint8_t* data, std::size_t size);
    /// The bytes available.
    [[nodiscard]] std::size_t size() const;
    void clear();

    /// Takes `size` bytes out. False where there are fewer; those are taken nonetheless.
    [[nodiscard]] bool read(std::uint8_t* buffer, std::size_t size);
    /// Copies `size` bytes from `offset` on. False for none and for more than there are; part of
    /// the buffer may be written then.
    [[nodiscard]] bool peek(std::uint8_t* buffer, std::size_t size, std::size_t offset) const;
    /// Drops `size` bytes. False, dropping nothing, for none and for more than there are.
    [[nodiscard]] bool remove(std::size_t size);
    /// The position of the first match at or after `start`, or -1.
    [[nodiscard]] std::ptrdiff_t find(const std::uint8_t* pattern, std::size_t size,
                                      std::size_t start) const;

    /// Automatic; set by each write, by nothing else.
    [[nodiscard]] WindowsEvent& event() { return mEvent; }

  private:
    using Chunk = boost::shared_ptr<std::vector<std::uint8_t>>;
    static constexpr std::ptrdiff_t kNotFound = -1;

    [[nodiscard]] std::span<const std::uint8_t> unread(const Chunk& chunk) const;
    std::size_t take(std::uint8_t* target, std::size_t size);
    std::size_t takeFromOldest(std::uint8_t* target, std::size_t size);
    [[nodiscard]] std::size_t copyOut(std::uint8_t* target, std::size_t size,
                                      std::size_t offset) const;
    [[nodiscard]] std::ptrdiff_t findByte(std::uint8_t byte, std::size_t start) const;

    mutable std::recursive_mutex mMutex;
    std::deque<Chunk> mChunks;
    std::size_t mReadOffset = 0;
    WindowsEvent mEvent{false, false};
};

} // namespace orbelantine
