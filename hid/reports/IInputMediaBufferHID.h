#pragma once

#include "avstack/RawMediaBuffer.h"

#include <cstddef>
#include <cstdint>

namespace orbelantine {

/// A packed report on its way to the next element. Its payload is an EventData, whose `report` has
/// the bytes.
class IInputMediaBufferHID : public IMediaBuffer {
  public:
    enum Kind : std::int32_t { Mouse = 0, Keyboard = 1 };

    struct EventData {
        boost::shared_ptr<RawMediaBuffer> report;
        Kind kind;
        /// That of the event the report was made from.
        std::uint64_t sourceTimestamp;
    };

    /// `report` must not be empty.
    IInputMediaBufferHID(const boost::shared_ptr<RawMediaBuffer>& report, Kind kind,
                         std::uint64_t sourceTimestamp, std::uint64_t timestamp);

    /// A new wrapper around a copy of the report; its kind follows from the copy's type.
    [[nodiscard]] boost::shared_ptr<IMediaBuffer>
    copy(std::uint8_t type = kKeepType, std::uint64_t timestamp = kKeepTimestamp) override;
    /// The same as copy().
    [[nodiscard]] boost::shared_ptr<IMediaBuffer>
    soft_copy(std::uint8_t type = kKeepType, std::uint64_t timestamp = kKeepTimestamp) override;

    using IMediaBuffer::map;

    [[nodiscard]] void* map(std::uint32_t) override { return &mEvent; }

    /// The wrapped report's.
    [[nodiscard]] std::uint8_t getType() override { return mEvent.report->getType(); }

    [[nodiscard]] std::uint32_t getSize() override { return sizeof(EventData); }

    [[nodiscard]] std::uint64_t getTimestamp() override { return mTimestamp; }

    [[nodiscard]] void* getRawBuffer() override { return &mEvent; }

  private:
    EventData mEvent;
    std::uint64_t mTimestamp;
};

static_assert(sizeof(IInputMediaBufferHID::EventData) == 32);

} // namespace orbelantine
