#include "avstack/IInputMediaBufferKeyboard.h"

#include <boost/endian/conversion.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

namespace orbelantine {

IInputMediaBufferKeyboard::IInputMediaBufferKeyboard(std::uint8_t ch, std::uint8_t type,
                                                     std::uint32_t extra, bool convert)
    : IInputMediaBufferKeyboard(
          {.ch = ch, .type = type, .extra = convert ? boost::endian::big_to_native(extra) : extra},
          convert) {}

IInputMediaBufferKeyboard::IInputMediaBufferKeyboard(const EventData& event, bool networkOrder)
    : mEvent(event)
    , mNetworkOrder(networkOrder) {}

boost::shared_ptr<IMediaBuffer> IInputMediaBufferKeyboard::soft_copy(std::uint8_t, std::uint64_t) {
    return boost::make_shared<IInputMediaBufferKeyboard>(mEvent.ch, mEvent.type, mEvent.extra,
                                                         mNetworkOrder);
}

} // namespace orbelantine
