#pragma once

#include "avstack/IMediaBuffer.h"

#include <cstdint>

namespace orbelantine {

/// What the input event buffers share: an inline payload, the EventData of `Buffer`, which
/// consumers read by offset (its reserved bytes are 0), and copies that are new buffers from the
/// stored fields.
template <class Buffer, std::uint8_t kType>
class InputMediaBuffer : public IMediaBuffer {
  public:
    /// The same as soft_copy(). The arguments have no effect on either.
    [[nodiscard]] boost::shared_ptr<IMediaBuffer>
    copy(std::uint8_t type = kKeepType, std::uint64_t timestamp = kKeepTimestamp) override {
        return soft_copy(type, timestamp);
    }

    [[nodiscard]] void* map() override { return payload(); }

    [[nodiscard]] void* map(std::uint32_t) override { return payload(); }

    [[nodiscard]] std::uint8_t getType() override { return kType; }

    [[nodiscard]] std::uint32_t getSize() override { return sizeof(typename Buffer::EventData); }

    [[nodiscard]] void* getRawBuffer() override { return payload(); }

  private:
    [[nodiscard]] void* payload() { return &static_cast<Buffer*>(this)->event(); }
};

} // namespace orbelantine
