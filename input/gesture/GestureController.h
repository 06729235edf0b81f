#pragma once

#include "core/common/run/StateMachine.h"
#include "input/gesture/GestureState.h"

#include <boost/signals2/signal.hpp>

#include <cstdint>
#include <string>

namespace orbelantine {

/// What has been seen of a burst.
struct GestureBurst {
    /// Monotonic; 0 when nothing is running.
    std::uint64_t lastEventNs = 0;
    std::int32_t eventCount = 0;
    std::int32_t lastDx = 0;
    std::int32_t lastDy = 0;
    /// Between the last two events.
    std::uint32_t intervalMs = 0;
};

/// Watches the movements and the left button of one pointing device for a burst: a press, quick
/// movement and a release, each within half a second of the one before. Then it goes on with the
/// last movement by itself, five times at the burst's pace: whoever listens to onInjection moves
/// the pointer, and the movement that this causes, told by mouseDelta, brings the next.
///
/// Any thread may call the events; each is posted to the machine's worker, which alone touches the
/// burst and raises onInjection. It isn't destroyed on the worker.
class GestureController final : public StateMachine<GestureController, GestureState> {
  public:
    explicit GestureController(IClock& clock = IClock::system());
    /// Drops what is queued, and waits for a slot that is running.
    ~GestureController() override;

    /// True: the event is posted, and what the state answers is dropped.
    bool mouseDelta(std::int32_t dx, std::int32_t dy) override;
    bool mouseLButton(bool down) override;

    [[nodiscard]] std::string getName() const override { return "GestureController"; }

    /// dx, dy, whether it is the last movement of the burst.
    boost::signals2::signal<void(std::int32_t, std::int32_t, bool)> onInjection;

    /// What follows belongs to the worker.
    /// @{

    [[nodiscard]] const GestureBurst& burst() const { return mBurst; }

    /// Whole milliseconds since the last event; without one they mean nothing.
    [[nodiscard]] std::uint64_t elapsedMs() const;

    /// Whether so many milliseconds are more than a burst has between its events.
    [[nodiscard]] bool isGap(std::uint64_t elapsedMs) const;
    /// Counts an event that came so many milliseconds after the last.
    void count(std::uint64_t elapsedMs);

    void keepDelta(std::int32_t dx, std::int32_t dy);

    /// Forgets when the last event was, and nothing else.
    void endBurst() { mBurst.lastEventNs = 0; }

    void reset() { mBurst = {}; }

    /// @}

  private:
    [[nodiscard]] std::uint64_t nowNs() const;

    GestureBurst mBurst;
};

} // namespace orbelantine
