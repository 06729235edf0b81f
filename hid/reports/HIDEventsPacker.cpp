#include "hid/reports/HIDEventsPacker.h"

#include "core/common/OSAL.h"
#include "core/common/log/Log.h"
#include "hid/reports/HIDReportLayout.h"
#include "hid/reports/HIDReportState.h"
#include "hid/reports/IHIDKeyTranslator.h"
#include "hid/reports/InputEvent.h"

#include <boost/endian/conversion.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

#include <algorithm>

namespace orbelantine {

namespace {

// Integers are swapped on every read, whatever order the buffer says they are in.
std::int8_t lowByteSwapped(std::int32_t stored) {
    return static_cast<std::int8_t>(boost::endian::big_to_native(stored));
}

} // namespace

HIDEventsPacker::HIDEventsPacker(const KVStore& configuration, bool includeBtCode,
                                 const Identity& identity)
    : mTranslator(osalCreate<IHIDKeyTranslator>(OSALFactory::instance(), "IHIDKeyTranslator",
                                                configuration, ""))
    , mIdentity(identity)
    , mIncludeBtCode(includeBtCode) {
    reset();
}

void HIDEventsPacker::start() {}

void HIDEventsPacker::stop() {
    reset();
}

void HIDEventsPacker::reset() {
    mMouseButtons = 0;
    mModifiers = 0;
    mKeys.fill(0);
    mTarget = boost::make_shared<IMediaElement::Dummy>();
}

void HIDEventsPacker::registerTarget(const boost::shared_ptr<IMediaElement>& target) {
    mTarget = target;
}

void HIDEventsPacker::onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) {
    if (!buffer)
        return;
    const std::uint8_t type = buffer->getType();
    if (type == eMediaTypeKeyboard)
        onKeyboard(*buffer);
    else if (type == eMediaTypeMouse)
        onMouse(*buffer);
}

//   0    1    2           3      4          10
// | A1 | 02 | modifiers | key0 | key1 | ... | key7 |
void HIDEventsPacker::onKeyboard(IMediaBuffer& buffer) {
    const auto* const event = eventOf<KeyEvent>(buffer);
    if (event == nullptr || !parseKeyboardEvent(*event)) {
        ORB_LOG_TEXT(kLogError, "HIDEventsPacker::onFrame() - error parsing keyboard event.");
        return;
    }
    std::array<std::uint8_t, 11> report{kInputTransaction, kReportKeyboard, mModifiers};
    std::copy(mKeys.begin(), mKeys.end(), report.begin() + 3);
    send(report.data(), report.size(), IInputMediaBufferHID::Keyboard, buffer.getTimestamp());
}

//   0    1    2         3   4   5
// | A1 | 01 | buttons | x | y | wheel |
void HIDEventsPacker::onMouse(IMediaBuffer& buffer) {
    const auto* const event = eventOf<MouseEvent>(buffer);
    Axes axes;
    if (event == nullptr || !parseMouseEvent(*event, axes)) {
        ORB_LOG_TEXT(kLogError, "HIDEventsPacker::onFrame() - error parsing mouse event.");
        return;
    }
    const std::array<std::uint8_t, 6> report{kInputTransaction,
                                             kReportRelativeMouse,
                                             mMouseButtons,
                                             static_cast<std::uint8_t>(axes.x),
                                             static_cast<std::uint8_t>(axes.y),
                                             static_cast<std::uint8_t>(axes.wheel)};
    // At error level for every report.
    ORB_LOG_TEXT(kLogError,
                 "HIDEventsPacker::onFrame() sending hid mouse event rep.axisX:%d, rep.axisY:%d, "
                 "rep.axisZ:%d, , mouse buttons:0x%x, rep.reportId:%d, rep.btCode:%x.",
                 axes.x, axes.y, axes.wheel, mMouseButtons, report[1], report[0]);
    send(report.data(), report.size(), IInputMediaBufferHID::Mouse, buffer.getTimestamp());
}

bool HIDEventsPacker::parseKeyboardEvent(const KeyEvent& event) {
    constexpr std::uint8_t kFailure = 255;
    const auto usage = static_cast<std::uint8_t>(mTranslator->translateVirtualKey(event.ch));
    if (usage == kFailure) {
        ORB_LOG_TEXT(kLogDebug,
                     "BluetoothHIDClientBase::doOnFrame - failed translating keycode: %d",
                     event.ch);
        return false;
    }
    const bool down = event.type == IInputMediaBufferKeyboard::KeyDown;
    applyModifier(mModifiers, usage, down);
    applyKey(mKeys.data(), mKeys.size(), usage, down);
    ORB_LOG_TEXT(kLogDebug,
                 "HIDEventsPacker::parseKeyboardEvent, scancode: %d --> hidCode:%d, modifiers:0x%x",
                 event.ch, usage, mModifiers);
    return true;
}

bool HIDEventsPacker::parseMouseEvent(const MouseEvent& event, Axes& axes) {
    switch (event.type) {
    case IInputMediaBufferMouse::Move:
        axes.x = lowByteSwapped(event.x);
        axes.y = lowByteSwapped(event.y);
        return true;
    case IInputMediaBufferMouse::WheelNonPositive:
    case IInputMediaBufferMouse::WheelPositive:
        axes.wheel = lowByteSwapped(event.y);
        return true;
    default:
        break;
    }
    if (event.type > IInputMediaBufferMouse::MiddleDown) {
        ORB_LOG_TEXT(kLogError, "BluetoothHIDClientBase::parseMouseEvent - unknown event type:%d",
                     event.type);
        return false;
    }
    applyMouseButton(mMouseButtons, event.type);
    return true;
}

void HIDEventsPacker::send(const std::uint8_t* report, std::size_t size,
                           IInputMediaBufferHID::Kind kind, std::uint64_t sourceTimestamp) {
    // Every report travels in a buffer of this size, the rest of it zero.
    constexpr std::uint32_t kBufferSize = 12;
    if (!mTarget)
        return;
    const auto type =
        kind == IInputMediaBufferHID::Keyboard ? eMediaTypeHidKeyboard : eMediaTypeHidMouse;
    const auto raw = boost::make_shared<RawMediaBuffer>(type, kBufferSize, sourceTimestamp);
    const std::size_t skipped = mIncludeBtCode ? 0 : 1;
    std::copy(report + skipped, report + size, static_cast<std::uint8_t*>(raw->map()));
    mTarget->onFrame(boost::make_shared<IInputMediaBufferHID>(raw, kind, sourceTimestamp,
                                                              IMediaBuffer::getNowTimestamp()));
}

} // namespace orbelantine
