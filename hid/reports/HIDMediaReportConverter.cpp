#include "hid/reports/HIDMediaReportConverter.h"

#include "avstack/IInputMediaBufferMouse.h"
#include "core/common/OSAL.h"
#include "core/common/log/Log.h"
#include "hid/reports/HIDReportLayout.h"
#include "hid/reports/HIDReportState.h"
#include "hid/reports/IHIDKeyTranslator.h"
#include "hid/reports/InputEvent.h"

namespace orbelantine {

namespace {

using KeyEvent = IInputMediaBufferKeyboard::EventData;
using MouseEvent = IInputMediaBufferMouse::EventData;

bool isDown(const KeyEvent& event) {
    return event.type == IInputMediaBufferKeyboard::KeyDown;
}

void convertRelativeMouse(const MouseEvent& event, HIDReportState& state, HIDReport& report) {
    const bool moves = event.type == IInputMediaBufferMouse::Move;
    const bool turnsWheel = event.type == IInputMediaBufferMouse::WheelNonPositive ||
                            event.type == IInputMediaBufferMouse::WheelPositive;
    applyMouseButton(state.mouseButtons, event.type);
    writeRelativeMouse(report, state.mouseButtons, moves ? event.x : 0, moves ? event.y : 0,
                       turnsWheel ? event.y : 0);
}

// Of absolute pointers only moves and the left button touch the surface: any other event lifts the
// tip for its one report and leaves the held buttons alone.
bool touchesAfter(const MouseEvent& event, HIDReportState& state) {
    if (event.type > IInputMediaBufferMouse::LeftDown)
        return false;
    applyMouseButton(state.mouseButtons, event.type);
    return (state.mouseButtons & 1U) != 0;
}

bool convertMouse(const MouseEvent& event, std::uint32_t mode, HIDReportState& state,
                  HIDReport& report) {
    switch (mode) {
    case HIDMediaReportConverter::kAbsolute:
        writeAbsoluteMouse(report, touchesAfter(event, state), event.x, event.y);
        return true;
    case HIDMediaReportConverter::kDigitizer:
        writeDigitizer(report, touchesAfter(event, state), event.x, event.y, state.scanCounter++);
        return true;
    case HIDMediaReportConverter::kRelative:
        convertRelativeMouse(event, state, report);
        return true;
    default:
        return false;
    }
}

// The consumer page is reported in two ranges, each under an id of its own.
struct ConsumerRange {
    std::uint32_t first;
    std::uint32_t last;
    HIDReportId id;
};

constexpr ConsumerRange kConsumerRanges[] = {{1, 54, kReportConsumerLow},
                                             {96, 716, kReportConsumerHigh}};

const ConsumerRange* findConsumerRange(std::uint32_t usage) {
    for (const ConsumerRange& range : kConsumerRanges)
        if (usage >= range.first && usage <= range.last)
            return &range;
    return nullptr;
}

} // namespace

HIDMediaReportConverter::HIDMediaReportConverter(const KVStore& configuration)
    : HIDMediaReportConverter(osalCreate<IHIDKeyTranslator>(
          OSALFactory::instance(), "IHIDKeyTranslator", configuration, "")) {}

HIDMediaReportConverter::HIDMediaReportConverter(
    const boost::shared_ptr<IHIDKeyTranslator>& translator)
    : mTranslator(translator) {}

bool HIDMediaReportConverter::convertToReport(const boost::shared_ptr<IMediaBuffer>& buffer,
                                              std::uint32_t mode, HIDReportState& state,
                                              HIDReport& report) {
    report.clear();
    if (!buffer)
        return false;
    switch (buffer->getType()) {
    case eMediaTypeKeyboard: {
        auto* const event = eventOf<KeyEvent>(*buffer);
        return event != nullptr && convertKeyboard(*event, state, report);
    }
    case eMediaTypeMouse: {
        const auto* const event = eventOf<MouseEvent>(*buffer);
        return event != nullptr && convertMouse(*event, mode, state, report);
    }
    default:
        return false;
    }
}

bool HIDMediaReportConverter::convertKeyboard(KeyEvent& event, HIDReportState& state,
                                              HIDReport& report) {
    if (convertConsumerKey(event, report) || convertSystemControlKey(event, report) ||
        convertKey(event, state, report))
        return true;
    ORB_LOG(kLogError, "%s() error parsing keyboard event.");
    return false;
}

bool HIDMediaReportConverter::convertConsumerKey(const KeyEvent& event, HIDReport& report) {
    const std::uint32_t usage = mTranslator->translateConsumerKey(event.ch);
    if (usage == kNoTranslation)
        return false;
    const ConsumerRange* const range = findConsumerRange(usage);
    if (range == nullptr) {
        ORB_LOG(kLogTrace, "%s() %04x is out of range consumer key. discarding.", usage);
        return false;
    }
    ORB_LOG(kLogTrace, "%s() translated %02x to %04x", event.ch, usage);
    const std::uint16_t key = isDown(event) ? static_cast<std::uint16_t>(usage) : 0;
    writeConsumerControl(report, range->id, key);
    ORB_LOG(kLogTrace, "%s() BT report: btCode=%02x, reportId=%02x, keys=%04x%04x", report.bytes[0],
            report.bytes[1], key, 0);
    return true;
}

bool HIDMediaReportConverter::convertSystemControlKey(const KeyEvent& event, HIDReport& report) {
    const std::uint32_t code = mTranslator->translateSystemControlKey(event.ch);
    if (code == kNoTranslation)
        return false;
    writeSystemControl(report, isDown(event) ? static_cast<std::uint8_t>(code) : 0);
    ORB_LOG(kLogTrace, "%s() SystemControl - BT report: btCode=%02x, reportId=%02x, keys=0x%x",
            report.bytes[0], report.bytes[1], report.bytes[2]);
    return true;
}

bool HIDMediaReportConverter::convertKey(KeyEvent& event, HIDReportState& state,
                                         HIDReport& report) {
    if (event.ch == 0) {
        ORB_LOG(kLogWarning, "%s() Currently not translating such keys because they usually have "
                             "an effect on Windows so they are not considered transferrable");
        event.extra = 0;
        return false;
    }
    constexpr std::uint8_t kFailure = 255;
    const auto usage = static_cast<std::uint8_t>(mTranslator->translateScanCode(event.ch));
    ORB_LOG(kLogTrace, "%s() translated scan code 0x%02x to 0x%02x (%d to %d)", event.ch, usage,
            event.ch, usage);
    if (usage == kFailure) {
        ORB_LOG(kLogError, "%s() failed translating keycode: %d", event.ch);
        return false;
    }
    // A modifier takes a place among the keys as well.
    applyModifier(state.modifiers, usage, isDown(event));
    applyKey(state.keys.data(), state.keys.size(), usage, isDown(event));
    writeKeyboard(report, state.modifiers, state.keys);
    const auto& keys = state.keys;
    ORB_LOG(kLogTrace,
            "%s() BT report: btCode=%02x, reportId=%02x, modify=%02x, "
            "keys=%02x%02x%02x%02x%02x%02x",
            report.bytes[0], report.bytes[1], report.bytes[2], keys[0], keys[1], keys[2], keys[3],
            keys[4], keys[5]);
    return true;
}

ORB_OSAL_REGISTER(HIDMediaReportConverter, HIDMediaReportConverter, "HIDMediaReportConverter");

} // namespace orbelantine
