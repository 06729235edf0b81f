#pragma once

#include "avstack/IMediaElement.h"
#include "hid/reports/HIDMediaReportConverter.h"
#include "hid/reports/HIDReportState.h"
#include "tools/aim_report/StepClock.h"
#include "tools/virtual_phone/phone/Phone.h"

#include <condition_variable>
#include <mutex>

namespace orbelantine::aim {

/// What lies between the source and the phone: turns buffers into relative reports and hands them
/// over, at the pace of a radio link. Buffers come on the source's thread.
class Link final : public IMediaElement {
  public:
    /// Both outlive the link.
    Link(phone::Phone& phone, StepClock& clock);

    void onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) override;

    /// Returns once `count` right button releases have come in all. These never reach the phone:
    /// they mark where the source is in its work. Throws std::runtime_error if they stay away.
    void waitForReleases(unsigned count);

    /// Where the cursor was when the left button went down and up last. To be asked after
    /// waitForReleases().
    [[nodiscard]] phone::Point pressed() const { return mPressed; }

    [[nodiscard]] phone::Point released() const { return mReleased; }

    /// How many deltas took the cursor from where it was parked to that press.
    [[nodiscard]] unsigned legs() const { return mLegs; }

  private:
    [[nodiscard]] bool isHeld() const;
    [[nodiscard]] bool takeRelease(IMediaBuffer& buffer);

    phone::Phone& mPhone;
    StepClock& mClock;
    HIDMediaReportConverter mConverter;
    HIDReportState mState;
    IClock::TimePoint mNextReport{};
    phone::Point mPressed;
    phone::Point mReleased;
    /// Since a right button release, and up to the press.
    unsigned mMoves = 0;
    unsigned mLegs = 0;
    std::mutex mMutex;
    std::condition_variable mReleaseCame;
    unsigned mReleases = 0;
};

} // namespace orbelantine::aim
