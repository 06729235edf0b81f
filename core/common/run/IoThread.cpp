#include "core/common/run/IoThread.h"

#include "core/common/log/Log.h"
#include "core/common/run/SafeIoService.h"
#include "core/common/run/ThreadName.h"
#include "core/common/run/WorkerThread.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <chrono>

namespace orbelantine {

namespace {

// The task in progress mostly ends by itself, or may come to what it waits for only afterwards.
constexpr std::chrono::milliseconds kInterruptAgain(20);

} // namespace

void IoThread::Queue::run(const char* name) {
    setThreadName(name);
    safeIoServiceRunWithPtr(&ioService);
    if (!ioService.stopped()) {
        ORB_LOG(kLogError, "%s() %s has ended by an exception: all that it is asked fails", name);
        mEnded = true;
        dropIfEnded();
    }
    mLeft.set_value();
}

IoThread::IoThread(const char* name)
    : mQueue(boost::make_shared<Queue>())
    , mWork(mQueue->ioService.get_executor())
    , mThread(startWorkerThread([name, queue = mQueue] { queue->run(name); })) {}

IoThread::~IoThread() {
    stop();
}

void IoThread::stop(const std::function<void()>& interrupt) {
    mQueue->ioService.stop();
    if (!mThread.joinable())
        return;
    if (isCurrent()) {
        mThread.detach();
        return;
    }
    if (interrupt) {
        const std::future<void> left = mQueue->mLeft.get_future();
        while (left.wait_for(kInterruptAgain) != std::future_status::ready)
            interrupt();
    }
    mThread.join();
}

} // namespace orbelantine
