#include "core/common/crash/CrashTraps.h"

#include "core/common/crash/linux/CrashRecorder.h"
#include "core/common/crash/linux/Fault.h"
#include "core/common/run/AlternateStack.h"

#include <ucontext.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <cstring>
#include <exception>
#include <new>
#include <optional>

namespace orbelantine {

namespace {

constexpr const char* kFilterSource = "CExceptionHandler::_UnhandledExceptionFilter";
constexpr const char* kTerminateSource = "CExceptionHandler::_TerminateHandler";
constexpr const char* kNewSource = "CExceptionHandler::_NewHandler";

struct Trap {
    int signal;
    struct sigaction before;
};

// Written while no trap is set, or by the one thread that sets them.
Trap traps[] = {{SIGSEGV, {}}, {SIGBUS, {}}, {SIGFPE, {}}, {SIGILL, {}}, {SIGABRT, {}}};
std::terminate_handler terminateBefore = nullptr;
std::new_handler newBefore = nullptr;
int installations = 0;

std::atomic<CExceptionHandler*> current = nullptr;
std::atomic<pid_t> process = 0;
// The thread whose end was recorded before it raises SIGABRT.
std::atomic<pid_t> terminating = 0;

// While the interrupted thread's stack is read, which may be no stack any more.
std::atomic<bool> unwinding = false;
sigjmp_buf unwindEscape;
gregset_t interruptedRegisters;

/// In a child of the process there is nobody to record.
bool isOwnProcess() {
    return process == getpid();
}

void endBy(int signal) {
    struct sigaction action {};

    action.sa_handler = SIG_DFL;
    (void)sigaction(signal, &action, nullptr);
    (void)raise(signal);
}

void passOn(const Fault& fault) {
    const Trap* trap = traps;
    while (trap->signal != fault.signal)
        ++trap;
    const struct sigaction& before = trap->before;
    const bool sent = fault.info->si_code <= 0;
    if (before.sa_handler == SIG_IGN && sent)
        return;
    if (before.sa_handler == SIG_IGN || before.sa_handler == SIG_DFL) {
        endBy(fault.signal);
        return;
    }
    if (sigisemptyset(&before.sa_mask) == 0)
        (void)pthread_sigmask(SIG_BLOCK, &before.sa_mask, nullptr);
    if ((before.sa_flags & SA_SIGINFO) != 0)
        before.sa_sigaction(fault.signal, const_cast<siginfo_t*>(fault.info), fault.context);
    else
        before.sa_handler(fault.signal);
}

void captureGuarded(CrashFrames& frames, void* context) {
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    std::memcpy(interruptedRegisters, registers, sizeof interruptedRegisters);
    if (sigsetjmp(unwindEscape, 1) == 0) {
        unwinding = true;
        captureInterruptedFrames(frames, context);
    }
    unwinding = false;
    std::memcpy(registers, interruptedRegisters, sizeof interruptedRegisters);
}

/// What a fault of the recording itself comes to. Doesn't come back while the process ends.
void failRecording() {
    crashPost().answer(1);
    for (;;)
        pause();
}

int recordFault(const Fault& fault) {
    CrashPost& crash = crashPost();
    switch (crash.claim(kCrashBound)) {
    case CrashPost::Claim::Taken:
        break;
    case CrashPost::Claim::Again:
        if (unwinding)
            siglongjmp(unwindEscape, 1);
        return 1;
    case CrashPost::Claim::TimedOut:
        return 1;
    }
    CrashPost::Entry& entry = crash.entry();
    entry.source = kFilterSource;
    entry.hasRecord = true;
    entry.record = recordOf(fault);
    captureGuarded(entry.frames, fault.context);
    const int verdict = crash.submit(kCrashBound);
    if (verdict == 0)
        crash.release();
    return verdict;
}

void onSignal(int signal, siginfo_t* info, void* context) {
    const Fault fault{signal, info, context};
    // Some hosts have a hundred thousand of these: nothing is asked of the system before.
    if (mayBeManaged(fault)) {
        passOn(fault);
        return;
    }
    const int errnoBefore = errno;
    if (isOwnProcess() && onCrashRecorder())
        failRecording();
    const bool recorded = signal == SIGABRT && terminating == gettid();
    const int verdict = isOwnProcess() && !recorded ? recordFault(fault) : 0;
    errno = errnoBefore;
    if (verdict != 0)
        endBy(signal);
    else
        passOn(fault);
}

/// A condition that the run time tells of, on the thread where it came up.
void recordCondition(const char* source) {
    CrashPost& crash = crashPost();
    if (!isOwnProcess() || onCrashRecorder() || crash.claim(kCrashBound) != CrashPost::Claim::Taken)
        return;
    CrashPost::Entry& entry = crash.entry();
    entry.source = source;
    entry.hasRecord = false;
    captureFrames(entry.frames);
    (void)crash.submit(kCrashBound);
    crash.release();
}

void onTerminate() {
    recordCondition(kTerminateSource);
    terminating = gettid();
}

/// What the run time does without a handler. To come back would make it try again for ever.
void onNoMemory() {
    recordCondition(kNewSource);
    throw std::bad_alloc();
}

/// The handler runs where the one before it expects to: a managed run time's need more room than
/// its alternate stacks have.
int stackFlag(const struct sigaction& before) {
    const bool hasHandler = before.sa_handler != SIG_DFL && before.sa_handler != SIG_IGN;
    return hasHandler ? before.sa_flags & SA_ONSTACK : SA_ONSTACK;
}

void setSignals() {
    for (Trap& trap : traps) {
        (void)sigaction(trap.signal, nullptr, &trap.before);

        struct sigaction action {};

        action.sa_sigaction = onSignal;
        action.sa_flags = SA_SIGINFO | SA_NODEFER | SA_RESTART | stackFlag(trap.before);
        (void)sigaction(trap.signal, &action, nullptr);
    }
}

/// One that was put over ours meanwhile stays, and leads here as before.
void restoreSignals() {
    for (const Trap& trap : traps) {
        struct sigaction present {};

        (void)sigaction(trap.signal, nullptr, &present);
        if (present.sa_sigaction == onSignal)
            (void)sigaction(trap.signal, &trap.before, nullptr);
    }
}

/// The unwinder makes its preparations at its first use.
void warmUp() {
    CrashFrames frames;
    captureFrames(frames);
    prepareFaults();
}

} // namespace

CExceptionHandler* crashHandler() {
    return current;
}

bool installCrashTraps(CExceptionHandler& handler) {
    if (installations == 0) {
        if (!startCrashRecorder())
            return false;
        warmUp();
    }
    // For as long as this thread lasts.
    thread_local std::optional<AlternateStack> stack;
    if (!stack)
        stack.emplace();
    current = &handler;
    if (installations++ > 0)
        return true;
    process = getpid();
    setSignals();
    terminateBefore = std::set_terminate(onTerminate);
    newBefore = std::set_new_handler(onNoMemory);
    return true;
}

void removeCrashTraps() {
    if (--installations > 0) {
        current = nullptr;
        return;
    }
    if (std::get_new_handler() == onNoMemory)
        std::set_new_handler(newBefore);
    if (std::get_terminate() == onTerminate)
        std::set_terminate(terminateBefore);
    restoreSignals();
    current = nullptr;
    stopCrashRecorder();
    process = 0;
}

} // namespace orbelantine
