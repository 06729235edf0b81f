#include "avstack/IInputMediaBufferTouch.h"

#include <boost/endian/conversion.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

namespace orbelantine {

IInputMediaBufferTouch::IInputMediaBufferTouch(std::uint8_t id, std::int32_t x, std::int32_t y,
                                               std::uint8_t type, bool convert,
                                               std::uint64_t timestamp)
    : IInputMediaBufferTouch({.id = id,
                              .x = convert ? boost::endian::big_to_native(x) : x,
                              .y = convert ? boost::endian::big_to_native(y) : y,
                              .type = type},
                             convert, timestamp) {}

IInputMediaBufferTouch::IInputMediaBufferTouch(const EventData& event, bool networkOrder,
                                               std::uint64_t timestamp)
    : mNetworkOrder(networkOrder)
    , mTimestamp(timestamp == kKeepTimestamp ? getNowTimestamp() : timestamp)
    , mEvent(event) {}

boost::shared_ptr<IMediaBuffer> IInputMediaBufferTouch::soft_copy(std::uint8_t, std::uint64_t) {
    return boost::make_shared<IInputMediaBufferTouch>(mEvent.id, mEvent.x, mEvent.y, mEvent.type,
                                                      mNetworkOrder, mTimestamp);
}

} // namespace orbelantine
