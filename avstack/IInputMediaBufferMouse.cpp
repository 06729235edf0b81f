#include "avstack/IInputMediaBufferMouse.h"

#include <boost/endian/conversion.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

namespace orbelantine {

namespace {

std::int32_t converted(std::int32_t value, bool convert) {
    return convert ? boost::endian::big_to_native(value) : value;
}

} // namespace

IInputMediaBufferMouse::IInputMediaBufferMouse(std::int32_t x, std::int32_t y, std::uint8_t type,
                                               bool convert, std::uint64_t timestamp,
                                               std::int32_t maxX, std::int32_t maxY)
    : IInputMediaBufferMouse({.x = converted(x, convert),
                              .y = converted(y, convert),
                              .type = type,
                              .maxX = converted(maxX, convert),
                              .maxY = converted(maxY, convert)},
                             convert, timestamp) {}

IInputMediaBufferMouse::IInputMediaBufferMouse(const EventData& event, bool networkOrder,
                                               std::uint64_t timestamp)
    : mNetworkOrder(networkOrder)
    , mTimestamp(timestamp == kKeepTimestamp ? getNowTimestamp() : timestamp)
    , mEvent(event) {}

boost::shared_ptr<IMediaBuffer> IInputMediaBufferMouse::soft_copy(std::uint8_t, std::uint64_t) {
    return boost::make_shared<IInputMediaBufferMouse>(
        mEvent.x, mEvent.y, mEvent.type, mNetworkOrder, mTimestamp, mEvent.maxX, mEvent.maxY);
}

} // namespace orbelantine
