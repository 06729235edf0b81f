#pragma once

#include "avstack/MediaTypes.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>

namespace orbelantine {

/// One piece of media on its way along a chain of elements. The base holds no data: each of its
/// operations answers "nothing". A buffer has no lock; it is handled by one thread at a time.
class IMediaBuffer {
  public:
    virtual ~IMediaBuffer() = default;

    /// Deep copy in new storage. A `type` of 255 and a `timestamp` of all ones keep the source's.
    [[nodiscard]] virtual boost::shared_ptr<IMediaBuffer>
    copy(std::uint8_t type = kKeepType, std::uint64_t timestamp = kKeepTimestamp);
    /// Shallow copy that shares the data; arguments as for copy().
    [[nodiscard]] virtual boost::shared_ptr<IMediaBuffer>
    soft_copy(std::uint8_t type = kKeepType, std::uint64_t timestamp = kKeepTimestamp);

    /// The payload, valid until unmap() and as long as the buffer lives; null without one.
    [[nodiscard]] virtual void* map();
    [[nodiscard]] virtual void* map(std::uint32_t plane);
    virtual void unmap();

    /// One of MediaType.
    [[nodiscard]] virtual std::uint8_t getType();

    /// Video geometry in pixels and bytes; all ones where it has no meaning.
    [[nodiscard]] virtual std::uint32_t getWidth();
    [[nodiscard]] virtual std::uint32_t getHeight();
    [[nodiscard]] virtual std::uint32_t getStride(std::uint32_t plane = 0);

    /// Bytes of payload; all ones where unknown.
    [[nodiscard]] virtual std::uint32_t getSize();

    /// Milliseconds on the time base of getNowTimestamp(); all ones where unknown.
    [[nodiscard]] virtual std::uint64_t getTimestamp();
    virtual void setTimestamp(std::uint64_t timestamp);

    /// The payload without map() and unmap(); null without one.
    [[nodiscard]] virtual void* getRawBuffer();
    /// The platform's media context; empty without one.
    [[nodiscard]] virtual boost::shared_ptr<void> getRawMediaContext();

    /// Whole milliseconds since a fixed instant of this process, from the monotonic clock.
    [[nodiscard]] static std::uint64_t getNowTimestamp();
};

} // namespace orbelantine
