#pragma once

#include "avstack/InputMediaBuffer.h"

#include <cstddef>
#include <cstdint>

namespace orbelantine {

/// One touch event. Its payload is an EventData, which consumers read by offset.
class IInputMediaBufferTouch : public InputMediaBuffer<IInputMediaBufferTouch, eMediaTypeTouch> {
  public:
    /// Values of EventData::type.
    enum EventType : std::uint8_t { Move = 0, Up = 1, Down = 2 };

    struct EventData {
        /// The contact; 0 stands for no touch, and sources then send a mouse buffer.
        std::uint8_t id;
        std::uint8_t reserved[3] = {};
        /// 0..65535 on both axes.
        std::int32_t x;
        std::int32_t y;
        std::uint8_t type;
        std::uint8_t reservedEnd[3] = {};
    };

    /// With `convert`, `x` and `y` are swapped from network to host order. A timestamp of all ones
    /// stands for now.
    IInputMediaBufferTouch(std::uint8_t id, std::int32_t x, std::int32_t y, std::uint8_t type,
                           bool convert = true, std::uint64_t timestamp = kKeepTimestamp);
    /// Stores the event as it stands: native sources name the order of their integers themselves.
    IInputMediaBufferTouch(const EventData& event, bool networkOrder, std::uint64_t timestamp);

    /// Where networkOrder is set, the constructor swaps what is stored once more.
    [[nodiscard]] boost::shared_ptr<IMediaBuffer>
    soft_copy(std::uint8_t type = kKeepType, std::uint64_t timestamp = kKeepTimestamp) override;

    [[nodiscard]] std::uint64_t getTimestamp() override { return mTimestamp; }

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
