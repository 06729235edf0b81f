#pragma once

#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>

namespace orbelantine {

class IHIDDeviceClient;
class IMediaBuffer;

/// Types and clicks on a HID device by single events. Calls come from one thread at a time; none
/// reports a failure.
class IHIDReportProvider {
  public:
    virtual ~IHIDReportProvider() = default;
    virtual void setDevice(const boost::shared_ptr<IHIDDeviceClient>& device) = 0;
    /// A delta, in the phone's own units.
    virtual void sendMouseMove(std::int32_t x, std::int32_t y) = 0;
    virtual void sendMouseScroll(std::int32_t amount) = 0;
    virtual void sendMouseLeftClick(bool pressed) = 0;
    virtual void sendMouseRightClick(bool pressed) = 0;
    /// Scan code of set 1, extended codes with bit 7 set.
    virtual void sendKey(std::uint8_t scanCode, bool pressed) = 0;
    /// Forgets what is held down; sends nothing.
    virtual void resetState() = 0;
    /// Sends one mouse or keyboard buffer; every send operation ends here.
    virtual void dispatchReport(const boost::shared_ptr<IMediaBuffer>& buffer) = 0;
};

} // namespace orbelantine
