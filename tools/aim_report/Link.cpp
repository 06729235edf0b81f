#include "tools/aim_report/Link.h"

#include "avstack/IInputMediaBufferMouse.h"
#include "core/common/config/KVStore.h"
#include "hid/reports/HIDReport.h"
#include "hid/reports/InputEvent.h"

#include <chrono>
#include <stdexcept>

namespace orbelantine::aim {

namespace {

using namespace std::chrono_literals;

constexpr IClock::Duration kReportInterval = 8ms;
constexpr std::chrono::seconds kLongestWait{10};

} // namespace

Link::Link(phone::Phone& phone, StepClock& clock)
    : mPhone(phone)
    , mClock(clock)
    , mConverter(KVStore()) {}

void Link::onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) {
    if (takeRelease(*buffer))
        return;
    HIDReport report;
    const bool wasHeld = isHeld();
    if (!mConverter.convertToReport(buffer, HIDMediaReportConverter::kRelative, mState, report))
        return;
    // The pause comes before the report, so that source and phone see it at the same time.
    mClock.sleepUntil(mNextReport);
    mNextReport = mClock.now() + kReportInterval;
    mPhone.receive(phone::Channel::Interrupt, {report.data, report.size});
    if (isHeld() == wasHeld) {
        mMoves += wasHeld ? 0 : 1;
    } else if (isHeld()) {
        mPressed = mPhone.cursor();
        mLegs = mMoves;
    } else {
        mReleased = mPhone.cursor();
    }
}

bool Link::isHeld() const {
    return (mState.mouseButtons & 1U) != 0;
}

bool Link::takeRelease(IMediaBuffer& buffer) {
    const auto* const event = eventOf<IInputMediaBufferMouse::EventData>(buffer);
    if (event == nullptr || event->type != IInputMediaBufferMouse::RightUp)
        return false;
    mMoves = 0;
    const std::lock_guard lock(mMutex);
    ++mReleases;
    mReleaseCame.notify_all();
    return true;
}

void Link::waitForReleases(unsigned count) {
    std::unique_lock lock(mMutex);
    if (!mReleaseCame.wait_for(lock, kLongestWait, [&] { return mReleases >= count; }))
        throw std::runtime_error("the mouse source does not answer");
}

} // namespace orbelantine::aim
