#pragma once

#include "avstack/IMediaBuffer.h"

#include <cstddef>
#include <cstdint>

namespace orbelantine {

/// One touch event. Its payload is an EventData, which consumers read by offset.
class IInputMediaBufferTouch : public IMediaBuffer {
  public:
    /// Values of EventData::type.
    enum EventType : std::uint8_t { Move = 0, Up = 1, Down = 2 };

    struct EventData {
        /// The contact; 0 stands for no touch, and sources then send a mouse buffer.
        std::uint8_t id;
        /// 0..65535 on both axes.
        std::int32_t x;
        std::int32_t y;
        std::uint8_t type;
    };

    /// With `convert`, `x` and `y` are swapped from network to host order. A timestamp of all ones
    /// stands for now.
    IInputMediaBufferTouch(std::uint8_t id, std::int32_t x, std::int32_t y, std::uint8_t type,
                           bool convert = true, std::uint64_t timestamp = kKeepTimestamp);
    /// Stores the event as it stands: native sources name the order of their integers themselves.
    IInputMediaBufferTouch(const EventData& event, bool networkOrder, std::uint64_t timestamp);

    /// A new buffer from the stored fields; where networkOrder is set, the constructor swaps the
    /// integers once more. The arguments have no effect.
    [[nodiscard]] boost::shared_ptr<IMediaBuffer>
    copy(std::uint8_t type = kKeepType, std::uint64_t timestamp = kKeepTimestamp) override;
    /// The same as copy().
    [[nodiscard]] boost::shared_ptr<IMediaBuffer>
    soft_copy(std::uint8_t type = kKeepType, std::uint64_t timestamp = kKeepTimestamp) override;

    [[nodiscard]] void* map() override { return &mEvent; }

    [[nodiscard]] void* map(std::uint32_t) override { return &mEvent; }

    [[nodiscard]] std::uint8_t getType() override { return eMediaTypeTouch; }

    [[nodiscard]] std::uint32_t getSize() override { return sizeof(EventData); }

    [[nodiscard]] std::uint64_t getTimestamp() override { return mTimestamp; }

    [[nodiscard]] void* getRawBuffer() override { return &mEvent; }

    [[nodiscard]] EventData& event() { return mEvent; }

    [[nodiscard]] bool networkOrder() const { return mNetworkOrder; }

  private:
    bool mNetworkOrder;
    std::uint64_t mTimestamp;
    EventData mEvent;
};

static_assert(sizeof(IInputMediaBufferTouch::EventData) == 16);
static_assert(offsetof(IInputMediaBufferTouch::EventData, id) == 0);
static_assert(offsetof(IInputMediaBufferTouch::EventData, x) == 4);
static_assert(offsetof(IInputMediaBufferTouch::EventData, y) == 8);
static_assert(offsetof(IInputMediaBufferTouch::EventData, type) == 12);

} // namespace orbelantine
