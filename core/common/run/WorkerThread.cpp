#include "core/common/run/WorkerThread.h"

#include <atomic>
#include <utility>

namespace orbelantine {

namespace {

std::atomic<ThreadMaker> threadMaker = &makeThread;
thread_local bool isWorkerThread = false;

} // namespace

std::thread startWorkerThread(std::function<void()> body) {
    return threadMaker.load()([body = std::move(body)] {
        isWorkerThread = true;
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

} // namespace orbelantine
