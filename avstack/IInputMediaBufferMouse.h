#pragma once

#include "avstack/InputMediaBuffer.h"

#include <cstddef>
#include <cstdint>

namespace orbelantine {

/// One mouse event. Its payload is an EventData, which consumers read by offset.
class IInputMediaBufferMouse : public InputMediaBuffer<IInputMediaBufferMouse, eMediaTypeMouse> {
  public:
    /// Values of EventData::type.
    enum EventType : std::uint8_t {
        Move = 0,
        LeftUp = 1,
        LeftDown = 2,
        RightUp = 3,
        RightDown = 4,
        WheelNonPositive = 5,
        WheelPositive = 6,
        MiddleUp = 7,
        MiddleDown = 8,
    };

    struct EventData {
        /// A signed delta, an absolute coordinate in 0..65535, or 0.
        std::int32_t x;
        /// As x; the amount for wheel events.
        std::int32_t y;
        std::uint8_t type;
        std::uint8_t reserved[3] = {};
        std::int32_t maxX;
        std::int32_t maxY;
    };

    /// With `convert` the four integers are swapped from network to host order. A timestamp of all
    /// ones stands for now.
    IInputMediaBufferMouse(std::int32_t x, std::int32_t y, std::uint8_t type, bool convert = true,
                           std::uint64_t timestamp = kKeepTimestamp, std::int32_t maxX = 0,
                           std::int32_t maxY = 0);
    /// Stores the event as it stands: native sources name the order of their integers themselves.
    IInputMediaBufferMouse(const EventData& event, bool networkOrder, std::uint64_t timestamp);

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

static_assert(sizeof(IInputMediaBufferMouse::EventData) == 20);
static_assert(offsetof(IInputMediaBufferMouse::EventData, x) == 0);
static_assert(offsetof(IInputMediaBufferMouse::EventData, y) == 4);
static_assert(offsetof(IInputMediaBufferMouse::EventData, type) == 8);
static_assert(offsetof(IInputMediaBufferMouse::EventData, maxX) == 12);
static_assert(offsetof(IInputMediaBufferMouse::EventData, maxY) == 16);

} // namespace orbelantine
