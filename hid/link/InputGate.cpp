#include "hid/link/InputGate.h"

namespace orbelantine {

InputGate::InputGate(const IoThread& worker, std::chrono::milliseconds bound)
    : mBound(bound)
    , mWorker(worker.queue()) {}

void InputGate::close() {
    boost::shared_ptr<IoThread::Queue> worker;
    {
        const std::lock_guard lock(mMutex);
        worker.swap(mWorker);
    }
    mChanged.notify_all();
}

InputGate::Outcome InputGate::wait(std::unique_lock<std::mutex>& lock, Ticket ticket,
                                   IoThread::Queue& worker) {
    if (worker.hasEnded()) {
        lock.unlock();
        worker.dropIfEnded();
        lock.lock();
    }
    const bool over =
        mChanged.wait_for(lock, mBound, [&] { return mFinished >= ticket || !mWorker; });
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
