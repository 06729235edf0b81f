#include "core/common/run/RunQueue.h"

#include "core/common/run/TimerWaits.h"

#include <boost/asio/io_context.hpp>

namespace orbelantine {

namespace {

void runOne(boost::asio::io_context& ioService, TimerWaits& waits) {
    if (waits.empty())
        ioService.run_one();
    else if (ioService.run_one_until(waits.earliest()) == 0)
        waits.endDue();
}

/// A run that a handler's exception ends leaves timers behind that nobody waits for. No handler
/// here: what isn't caught above ends the process where it was thrown.
class Run {
  public:
    explicit Run(TimerWaits& waits)
        : mWaits(waits) {}

    ~Run() {
        if (!mFinished)
            mWaits.abandon();
    }

    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void finish() { mFinished = true; }

  private:
    TimerWaits& mWaits;
    bool mFinished = false;
};

} // namespace

void runQueue(boost::asio::io_context& ioService) {
    TimerWaits& waits = TimerWaits::of(ioService);
    Run run(waits);
    // A queue of Windows hands out what was posted ahead of the stop: here it is left alone.
    while (!ioService.stopped())
        runOne(ioService, waits);
    run.finish();
}

} // namespace orbelantine
