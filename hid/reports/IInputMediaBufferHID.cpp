#include "hid/reports/IInputMediaBufferHID.h"

#include <boost/smart_ptr/make_shared_object.hpp>

namespace orbelantine {

IInputMediaBufferHID::IInputMediaBufferHID(const boost::shared_ptr<RawMediaBuffer>& report,
                                           Kind kind, std::uint64_t sourceTimestamp,
                                           std::uint64_t timestamp)
    : mEvent{report, kind, sourceTimestamp}
    , mTimestamp(timestamp) {}

boost::shared_ptr<IMediaBuffer> IInputMediaBufferHID::copy(std::uint8_t type,
                                                           std::uint64_t timestamp) {
    const auto report =
        boost::static_pointer_cast<RawMediaBuffer>(mEvent.report->copy(type, timestamp));
    return boost::make_shared<IInputMediaBufferHID>(
        report, report->getType() == eMediaTypeHidKeyboard ? Keyboard : Mouse,
        mEvent.sourceTimestamp, timestamp == kKeepTimestamp ? mTimestamp : timestamp);
}

boost::shared_ptr<IMediaBuffer> IInputMediaBufferHID::soft_copy(std::uint8_t type,
                                                                std::uint64_t timestamp) {
    return copy(type, timestamp);
}

} // namespace orbelantine
