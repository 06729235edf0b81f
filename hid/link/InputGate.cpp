#include "hid/link/InputGate.h"

namespace orbelantine {

InputGate::InputGate(boost::asio::io_service& ioService, std::chrono::milliseconds bound)
    : mIoService(ioService)
    , mBound(bound) {}

void InputGate::close() {
    {
        const std::lock_guard lock(mMutex);
        mClosed = true;
    }
    mChanged.notify_all();
}

InputGate::Outcome InputGate::wait(std::unique_lock<std::mutex>& lock, Ticket ticket) {
    const bool over =
        mChanged.wait_for(lock, mBound, [&] { return mFinished >= ticket || mClosed; });
    return over ? Outcome::Passed : Outcome::TimedOut;
}

void InputGate::finish(Ticket ticket) {
    {
        const std::lock_guard lock(mMutex);
        mFinished = ticket;
    }
    mChanged.notify_all();
}

} // namespace orbelantine
