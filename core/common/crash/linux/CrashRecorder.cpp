#include "core/common/crash/linux/CrashRecorder.h"

#include "core/common/crash/CExceptionHandler.h"
#include "core/common/crash/CrashTraps.h"
#include "core/common/run/ThreadName.h"
#include "core/common/run/WorkerThread.h"

#include <unistd.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <future>
#include <memory>
#include <new>
#include <system_error>
#include <thread>

namespace orbelantine {

namespace {

constexpr int kOwnFaults[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

// All of this outlives the process's statics: it may crash while it ends.
CrashPost post;
std::atomic<pid_t> recorderThread = 0;
std::thread* recorder = nullptr;
pid_t recorderProcess = 0;

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

/// Memory of the thread's own, kept until a crash: others may have used up all there is, or hold
/// the lock of theirs. In pieces small enough to come from the thread's heap.
class Reserve {
  public:
    Reserve() {
        for (auto& piece : mPieces)
            piece.reset(new (std::nothrow) char[kPieceSize]);
    }

    void release() {
        for (auto& piece : mPieces)
            piece.reset();
    }

  private:
    static constexpr std::size_t kPieceSize = 0x10000;
    std::array<std::unique_ptr<char[]>, 16> mPieces;
};

void recordCrashes(std::promise<void>& ready) {
    recorderThread = gettid();
    setThreadName("CrashRecorderThread");
    Reserve reserve;
    ready.set_value();
    while (post.await()) {
        reserve.release();
        post.answer(record(post.entry()));
    }
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
    recorderProcess = getpid();
    std::promise<void> ready;
    try {
        recorder = new std::thread(startWorkerThread([&ready] { recordCrashes(ready); }));
    } catch (const std::system_error&) {
        return false;
    }
    ready.get_future().wait();
    return true;
}

void stopCrashRecorder() {
    // A child of the process has the object, and not its thread.
    if (recorderProcess == getpid() && post.close(kCrashBound))
        recorder->join();
    else
        recorder->detach();
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
