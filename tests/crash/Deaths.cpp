#include "tests/crash/Deaths.h"

#include "core/common/crash/CExceptionHandler.h"
#include "core/common/crash/TerminateHandler.h"
#include "core/common/log/Log.h"
#include "core/common/log/Spdlog.h"
#include "core/common/run/WorkerThread.h"

#include <spdlog/sinks/base_sink.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <limits>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

namespace orbelantine::test {

#define ORB_DEADLY [[gnu::noinline]] __attribute__((no_sanitize("undefined", "address", "thread")))

ORB_DEADLY void writeNowhere() {
    volatile int* volatile nowhere = nullptr;
    *nowhere = 1;
}

namespace {

ORB_DEADLY void callNowhere() {
    void (*volatile nowhere)() = nullptr;
    nowhere();
}

ORB_DEADLY int overflowStack(int depth) {
    volatile char room[4096]; // NOLINT(modernize-avoid-c-arrays): volatile
    room[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : overflowStack(depth + 1) + room[0];
}

void overflow() {
    std::printf("%d\n", overflowStack(0));
}

void divideByZero() {
    volatile int zero = 0;
    volatile int result = 7 / zero;
    (void)result;
}

void throwAny() {
    throw std::runtime_error("nobody catches this");
}

void throwUncaught() noexcept {
    throwAny();
}

void takeAllMemory() noexcept {
    volatile std::size_t size = std::numeric_limits<std::ptrdiff_t>::max() / 2;
    auto* volatile all = new char[size];
    (void)all;
}

void inWorker(void (*die)()) {
    startWorkerThread(die).join();
}

/// Two threads that die as nearly at once as can be.
void inTwoThreads() {
    static std::atomic<int> ready = 0;
    const auto die = [] {
        ++ready;
        while (ready < 2) {
        }
        writeNowhere();
    };
    std::thread first(die);
    std::thread second(die);
    first.join();
    second.join();
}

/// Dies with its own lock held, which every line of the log takes.
class DeadlySink : public spdlog::sinks::base_sink<std::mutex> {
  protected:
    void sink_it_(const spdlog::details::log_msg& /*message*/) override { writeNowhere(); }

    void flush_() override {}
};

void inLog() {
    lumiport_log(kLogError, kNativeLogTag, "the log is there");
    spdlog::get(kNativeLogTag)->sinks().push_back(std::make_shared<DeadlySink>());
    lumiport_log(kLogError, kNativeLogTag, "this one is never written");
}

/// A terminate handler of the host's, which the one of the crash records comes before.
void throwWithHandler() {
    std::set_terminate(terminateHandler);
    throwUncaught();
}

constexpr Death kDeaths[] = {
    {"null_write", writeNowhere},
    {"null_call", callNowhere},
    {"stack_overflow", overflow},
    {"division", divideByZero},
    {"abort", [] { std::abort(); }},
    {"terminate", [] { std::terminate(); }},
    {"exception", throwUncaught},
    {"own_terminate", throwWithHandler},
    {"no_memory", takeAllMemory},
    {"worker", [] { inWorker(writeNowhere); }},
    {"worker_overflow", [] { inWorker(overflow); }},
    {"two_threads", inTwoThreads},
    {"during_exit",
     [] {
         (void)std::atexit(writeNowhere);
         std::exit(0);
     }},
    {"in_log", inLog},
    {"on_purpose", [] { CExceptionHandler().Crash(); }},
    // The handler lets whoever was before it have the crash.
    {"no_action", writeNowhere},
    // The handler's own work fails.
    {"while_recording", writeNowhere},
    // The records' folder can't be made.
    {"no_folder", writeNowhere},
    // The handler was taken off again.
    {"unset", writeNowhere},
};

class FailingHandler final : public CExceptionHandler {
    void WriteStackTrace(const wchar_t* /*section*/, const void* /*crashAddress*/,
                         const void* /*context*/) override {
        writeNowhere();
    }
};

std::unique_ptr<CExceptionHandler> handlerFor(const std::string& death) {
    if (death == "while_recording")
        return std::make_unique<FailingHandler>();
    const bool leaves = death == "no_action" || death == "host_handler";
    return std::make_unique<CExceptionHandler>(false, !leaves);
}

} // namespace

std::span<const Death> deaths() {
    return kDeaths;
}

int dieOf(const Death& death) {
    if (death.prepare != nullptr)
        death.prepare();
    const auto handler = handlerFor(death.name);
    if (!handler->SetHandler())
        return 66;
    if (death.name == std::string("unset"))
        handler->UnsetHandler();
    death.die();
    return 0;
}

} // namespace orbelantine::test
