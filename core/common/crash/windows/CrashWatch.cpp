#include "core/common/crash/windows/CrashWatch.h"

#include "core/common/crash/CExceptionHandler.h"
#include "core/common/crash/CrashTraps.h"
#include "core/common/run/ThreadName.h"
#include "core/common/run/WorkerThread.h"

#include <windows.h>

#include <atomic>
#include <chrono>
#include <system_error>
#include <thread>

namespace orbelantine {

namespace {

constexpr DWORD kWatchBound = std::chrono::milliseconds(kCrashBound).count();

// All of this outlives the process's statics: it may crash while it ends.
HANDLE begun = nullptr;
HANDLE ended = nullptr;
std::thread* watcher = nullptr;
std::atomic<bool> watchStops = false;
std::atomic<DWORD> recordingThread = 0;
std::atomic<const CrashRecording*> handedOver = nullptr;
std::atomic<int> handedVerdict = 1;

void endProcess() {
    if (CExceptionHandler* const handler = crashHandler())
        handler->KillProcess();
    (void)TerminateProcess(GetCurrentProcess(), 1);
}

/// Also where memory has run out.
int verdictOn(const CrashRecording& crash) {
    try {
        return crash.handler->UnhandledExceptionFilter(crash.source, crash.pointers);
    } catch (...) {
        return 1;
    }
}

void watchCrashes() {
    setThreadName("CrashWatchThread");
    while (WaitForSingleObject(begun, INFINITE) == WAIT_OBJECT_0 && !watchStops) {
        if (const CrashRecording* const crash = handedOver.exchange(nullptr)) {
            handedVerdict = verdictOn(*crash);
            (void)SetEvent(ended);
        } else if (WaitForSingleObject(ended, kWatchBound) != WAIT_OBJECT_0) {
            endProcess();
        }
    }
}

/// The one crash that is being recorded; another thread's waits, which usually ends the process.
class Turn {
  public:
    Turn() {
        const DWORD caller = GetCurrentThreadId();
        const ULONGLONG end = GetTickCount64() + kWatchBound;
        while (!mTaken && recordingThread != caller && GetTickCount64() < end) {
            DWORD nobody = 0;
            mTaken = recordingThread.compare_exchange_strong(nobody, caller);
            if (!mTaken)
                Sleep(1);
        }
    }

    ~Turn() {
        if (mTaken)
            recordingThread = 0;
    }

    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    [[nodiscard]] bool taken() const { return mTaken; }

  private:
    bool mTaken = false;
};

} // namespace

bool startCrashWatch() {
    watchStops = false;
    begun = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    ended = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    try {
        watcher = new std::thread(startWorkerThread(watchCrashes));
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

void stopCrashWatch() {
    watchStops = true;
    (void)SetEvent(begun);
    watcher->join();
    delete watcher;
    (void)CloseHandle(begun);
    (void)CloseHandle(ended);
}

int recordWatched(const CrashRecording& crash, bool elsewhere) {
    const Turn turn;
    if (!turn.taken())
        return 1;
    if (!elsewhere) {
        (void)SetEvent(begun);
        const int verdict = verdictOn(crash);
        (void)SetEvent(ended);
        return verdict;
    }
    handedOver = &crash;
    (void)SetEvent(begun);
    if (WaitForSingleObject(ended, kWatchBound) != WAIT_OBJECT_0)
        endProcess();
    return handedVerdict;
}

} // namespace orbelantine
