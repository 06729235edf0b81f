#include "core/common/run/WorkerThread.h"

#include "core/common/log/Log.h"
#include "core/common/run/AlternateStack.h"

#include <atomic>
#include <system_error>
#include <utility>

namespace orbelantine {

namespace {

std::atomic<ThreadMaker> threadMaker = &makeThread;
thread_local bool isWorkerThread = false;

} // namespace

std::thread startWorkerThread(std::function<void()> body) {
    return threadMaker.load()([body = std::move(body)] {
        isWorkerThread = true;
        const AlternateStack stack;
        body();
    });
}

bool onWorkerThread() {
    return isWorkerThread;
}

void setThreadMaker(ThreadMaker maker) {
    threadMaker = maker;
}

std::thread makeThread(std::function<void()> body) {
    return std::thread(std::move(body));
}

void endElsewhere(boost::shared_ptr<void> object) {
    auto* const left = new auto(std::move(object));
    try {
        makeThread([left] { delete left; }).detach();
    } catch (const std::system_error& e) {
        ORB_LOG(kLogError, "%s() no thread can be started, what should end stays: %s", e.what());
    }
}

} // namespace orbelantine
