#include "core/common/crash/linux/CrashRecorder.h"

#include "core/common/crash/CExceptionHandler.h"
#include "core/common/crash/CrashTraps.h"
#include "core/common/run/ThreadName.h"
#include "core/common/run/WorkerThread.h"

#include <unistd.h>

#include <csignal>
#include <memory>
#include <system_error>
#include <thread>

namespace orbelantine {

namespace {

constexpr int kOwnFaults[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

// All of this outlives the process's statics: it may crash while it ends.
CrashPost post;
std::atomic<pid_t> recorderThread = 0;
std::thread* recorder = nullptr;

int record(const CrashPost::Entry& entry) {
    CExceptionHandler* const handler = crashHandler();
    if (handler == nullptr)
        return 1;
    const ExceptionPointers pointers{&entry.record, &entry.frames};
    try {
        return handler->UnhandledExceptionFilter(entry.source,
                                                 entry.hasRecord ? &pointers : nullptr);
    } catch (...) {
        return 1;
    }
}

void recordCrashes() {
    recorderThread = gettid();
    setThreadName("CrashRecorderThread");
    // Memory of its own, so that it doesn't wait for what the thread that crashed holds.
    delete[] new char[64];
    while (post.await())
        post.answer(record(post.entry()));
    recorderThread = 0;
}

/// While there is one, the calling thread and those it starts take no signals but their faults.
class SignalsHeldBack {
  public:
    SignalsHeldBack() {
        sigset_t others;
        sigfillset(&others);
        for (const int signal : kOwnFaults)
            sigdelset(&others, signal);
        pthread_sigmask(SIG_BLOCK, &others, &mBefore);
    }

    ~SignalsHeldBack() { pthread_sigmask(SIG_SETMASK, &mBefore, nullptr); }

    SignalsHeldBack(const SignalsHeldBack&) = delete;
    SignalsHeldBack& operator=(const SignalsHeldBack&) = delete;

  private:
    sigset_t mBefore{};
};

} // namespace

CrashPost& crashPost() {
    return post;
}

bool startCrashRecorder() {
    const SignalsHeldBack heldBack;
    post.open();
    try {
        recorder = new std::thread(startWorkerThread(recordCrashes));
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

void stopCrashRecorder() {
    if (!post.close(kCrashBound)) {
        recorder->detach();
    } else {
        recorder->join();
    }
    delete recorder;
    recorder = nullptr;
}

bool onCrashRecorder() {
    return recorderThread == gettid();
}

const CrashFrames* recordedFrames() {
    return onCrashRecorder() ? &post.entry().frames : nullptr;
}

} // namespace orbelantine
