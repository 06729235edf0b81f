#pragma once

#include "hid/reports/IHIDReportProvider.h"

namespace orbelantine {

class HIDMediaReportConverter;
class IInputMediaBufferKeyboard;
class IInputMediaBufferMouse;
class KVStore;
struct HIDReportState;

/// Sends relative mouse and keyboard reports straight to a device, through buffers that it reuses.
class HIDReportProvider : public IHIDReportProvider {
  public:
    explicit HIDReportProvider(const KVStore& configuration);

    void setDevice(const boost::shared_ptr<IHIDDeviceClient>& device) override;
    void sendMouseMove(std::int32_t x, std::int32_t y) override;
    /// The amount travels in `x` alone, so that the report's wheel is 0.
    void sendMouseScroll(std::int32_t amount) override;
    void sendMouseLeftClick(bool pressed) override;
    void sendMouseRightClick(bool pressed) override;
    void sendKey(std::uint8_t scanCode, bool pressed) override;
    void resetState() override;
    void dispatchReport(const boost::shared_ptr<IMediaBuffer>& buffer) override;

  private:
    void sendClick(std::uint8_t upEvent, bool pressed);

    boost::shared_ptr<IHIDDeviceClient> mDevice;
    boost::shared_ptr<HIDMediaReportConverter> mConverter;
    boost::shared_ptr<HIDReportState> mState;
    boost::shared_ptr<IInputMediaBufferMouse> mMouseBuffer;
    boost::shared_ptr<IInputMediaBufferKeyboard> mKeyboardBuffer;
};

} // namespace orbelantine
