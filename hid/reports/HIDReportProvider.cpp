#include "hid/reports/HIDReportProvider.h"

#include "avstack/IInputMediaBufferKeyboard.h"
#include "avstack/IInputMediaBufferMouse.h"
#include "core/common/log/Log.h"
#include "hid/channel/IHIDDeviceClient.h"
#include "hid/reports/HIDMediaReportConverter.h"
#include "hid/reports/HIDReport.h"
#include "hid/reports/HIDReportState.h"

#include <boost/smart_ptr/make_shared_object.hpp>

namespace orbelantine {

namespace {

constexpr std::uint32_t kNoExtra = ~std::uint32_t{0};

} // namespace

HIDReportProvider::HIDReportProvider(const KVStore& configuration)
    : mConverter(boost::make_shared<HIDMediaReportConverter>(configuration))
    , mState(boost::make_shared<HIDReportState>())
    , mMouseBuffer(boost::make_shared<IInputMediaBufferMouse>(IInputMediaBufferMouse::EventData{},
                                                              false, std::uint64_t{0}))
    , mKeyboardBuffer(boost::make_shared<IInputMediaBufferKeyboard>(
          std::uint8_t{0}, std::uint8_t{0}, kNoExtra, false)) {}

void HIDReportProvider::setDevice(const boost::shared_ptr<IHIDDeviceClient>& device) {
    mDevice = device;
}

void HIDReportProvider::sendMouseMove(std::int32_t x, std::int32_t y) {
    auto& event = mMouseBuffer->event();
    event.x = x;
    event.y = y;
    event.type = IInputMediaBufferMouse::Move;
    dispatchReport(mMouseBuffer);
}

void HIDReportProvider::sendMouseScroll(std::int32_t amount) {
    auto& event = mMouseBuffer->event();
    event.x = amount;
    event.y = 0;
    event.type = amount < 0 ? IInputMediaBufferMouse::WheelPositive
                            : IInputMediaBufferMouse::WheelNonPositive;
    dispatchReport(mMouseBuffer);
}

void HIDReportProvider::sendMouseLeftClick(bool pressed) {
    sendClick(IInputMediaBufferMouse::LeftUp, pressed);
}

void HIDReportProvider::sendMouseRightClick(bool pressed) {
    sendClick(IInputMediaBufferMouse::RightUp, pressed);
}

// `y` stays that of the last move: a button event's report has none.
void HIDReportProvider::sendClick(std::uint8_t upEvent, bool pressed) {
    auto& event = mMouseBuffer->event();
    event.x = 0;
    event.type = static_cast<std::uint8_t>(upEvent + (pressed ? 1 : 0));
    dispatchReport(mMouseBuffer);
}

void HIDReportProvider::sendKey(std::uint8_t scanCode, bool pressed) {
    auto& event = mKeyboardBuffer->event();
    event.ch = scanCode;
    event.type = pressed ? IInputMediaBufferKeyboard::KeyDown : IInputMediaBufferKeyboard::KeyUp;
    dispatchReport(mKeyboardBuffer);
}

void HIDReportProvider::resetState() {
    mState = boost::make_shared<HIDReportState>();
}

void HIDReportProvider::dispatchReport(const boost::shared_ptr<IMediaBuffer>& buffer) {
    if (!mDevice) {
        ORB_LOG_TEXT(kLogError, "No device defined!");
        return;
    }
    HIDReport report;
    if (!mConverter->convertToReport(buffer, HIDMediaReportConverter::kRelative, *mState, report)) {
        ORB_LOG_TEXT(kLogWarning, "failed disptching report - conversion failed");
        return;
    }
    mDevice->sendReport(report.data, report.size);
}

} // namespace orbelantine
