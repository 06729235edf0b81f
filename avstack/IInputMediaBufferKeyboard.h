#pragma once

#include "avstack/InputMediaBuffer.h"

#include <cstddef>
#include <cstdint>

namespace orbelantine {

/// One key event. Its payload is an EventData, which consumers read by offset. It keeps no
/// timestamp: getTimestamp() is 0.
class IInputMediaBufferKeyboard
    : public InputMediaBuffer<IInputMediaBufferKeyboard, eMediaTypeKeyboard> {
  public:
    /// Values of EventData::type.
    enum EventType : std::uint8_t { KeyDown = 0, KeyUp = 1 };

    struct EventData {
        /// Scan code of set 1, extended codes with bit 7 set; 0 where `extra` tells the key.
        std::uint8_t ch;
        std::uint8_t type;
        std::uint8_t reserved[2] = {};
        /// All ones beside a scan code; otherwise a virtual key code or a UTF-16 code unit.
        std::uint32_t extra;
    };

    /// With `convert`, `extra` is swapped from network to host order.
    IInputMediaBufferKeyboard(std::uint8_t ch, std::uint8_t type, std::uint32_t extra,
                              bool convert = true);
    /// Stores the event as it stands: native sources name the order of its integer themselves.
    IInputMediaBufferKeyboard(const EventData& event, bool networkOrder);

    /// Where networkOrder is set, the copy's constructor swaps what is stored once more.
    [[nodiscard]] boost::shared_ptr<IMediaBuffer>
    soft_copy(std::uint8_t type = kKeepType, std::uint64_t timestamp = kKeepTimestamp) override;

    [[nodiscard]] std::uint64_t getTimestamp() override { return 0; }

    [[nodiscard]] EventData& event() { return mEvent; }

    [[nodiscard]] bool networkOrder() const { return mNetworkOrder; }

  private:
    EventData mEvent;
    bool mNetworkOrder;
};

static_assert(sizeof(IInputMediaBufferKeyboard::EventData) == 8);
static_assert(offsetof(IInputMediaBufferKeyboard::EventData, ch) == 0);
static_assert(offsetof(IInputMediaBufferKeyboard::EventData, type) == 1);
static_assert(offsetof(IInputMediaBufferKeyboard::EventData, extra) == 4);

} // namespace orbelantine
