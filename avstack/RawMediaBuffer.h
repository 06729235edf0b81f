#pragma once

#include "avstack/IMediaBuffer.h"

#include <cstdint>

namespace orbelantine {

/// Plain bytes with a type and a timestamp. Owned bytes come from new[] and go with the buffer.
class RawMediaBuffer : public IMediaBuffer {
  public:
    /// Owns `size` new bytes, all zero.
    RawMediaBuffer(std::uint8_t type, std::uint32_t size, std::uint64_t timestamp);
    /// Refers to `data`, and takes it over if `ownsData` is set.
    RawMediaBuffer(std::uint8_t type, std::uint32_t size, std::uint64_t timestamp,
                   std::uint8_t* data, bool ownsData);
    ~RawMediaBuffer() override;
    RawMediaBuffer(const RawMediaBuffer&) = delete;
    RawMediaBuffer& operator=(const RawMediaBuffer&) = delete;

    [[nodiscard]] boost::shared_ptr<IMediaBuffer>
    copy(std::uint8_t type = kKeepType, std::uint64_t timestamp = kKeepTimestamp) override;
    /// Shares the bytes and takes their ownership along: this buffer stays usable only while the
    /// copy lives.
    [[nodiscard]] boost::shared_ptr<IMediaBuffer>
    soft_copy(std::uint8_t type = kKeepType, std::uint64_t timestamp = kKeepTimestamp) override;

    [[nodiscard]] void* map() override { return mData; }

    [[nodiscard]] void* map(std::uint32_t) override { return mData; }

    [[nodiscard]] std::uint8_t getType() override { return mType; }

    [[nodiscard]] std::uint32_t getSize() override { return mSize; }

    [[nodiscard]] std::uint64_t getTimestamp() override { return mTimestamp; }

    void setTimestamp(std::uint64_t timestamp) override { mTimestamp = timestamp; }

    [[nodiscard]] void* getRawBuffer() override { return mData; }

  private:
    [[nodiscard]] std::uint8_t typeOfCopy(std::uint8_t type) const;
    [[nodiscard]] std::uint64_t timestampOfCopy(std::uint64_t timestamp) const;

    std::uint8_t mType;
    std::uint32_t mSize;
    std::uint64_t mTimestamp;
    std::uint8_t* mData;
    bool mOwnsData;
};

} // namespace orbelantine
