#include "core/common/errors/Exception.h"
#include "core/common/run/CallGate.h"
#include "core/common/run/IoThread.h"
#include "core/common/run/SafeIoService.h"
#include "tests/support/CapturedLog.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/throw_exception.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace orbelantine::test {
namespace {

constexpr std::chrono::milliseconds kLongBound{60000};
constexpr std::chrono::milliseconds kShortBound{1};

TEST(CallGate, LetsCallsInUntilItIsShutAndGivesUpOnOneThatStays) {
    CallGate gate;
    {
        const CallGate::Call outer(gate);
        const CallGate::Call inner(gate);
        EXPECT_TRUE(outer.inside() && inner.inside());
        EXPECT_FALSE(gate.shut(kShortBound));
        EXPECT_FALSE(CallGate::Call(gate).inside());
    }
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(gate.shut(kLongBound));
    EXPECT_FALSE(CallGate::Call(gate).inside());
    CallGate awaited;
    auto call = std::make_unique<CallGate::Call>(awaited);
    std::thread leaver([&] {
        while (CallGate::Call(awaited).inside())
            std::this_thread::yield();
        call.reset();
    });
    EXPECT_TRUE(awaited.shut(kLongBound)) << "with the last call";
    leaver.join();
}

/// Tells of its task's end, be it run or dropped.
std::shared_ptr<void> tellingOf(std::promise<void>& end) {
    return {nullptr, [&](void*) { end.set_value(); }};
}

TEST(IoThread, ExceptionEndsItAndDropsWhatIsPostedBeforeAndAfter) {
    CapturedLog log(kLogError);
    IoThread worker("EndedThread");
    std::promise<void> mayThrow;
    std::promise<void> before;
    std::promise<void> after;
    bool ran = false;
    worker.post([&] {
        mayThrow.get_future().wait();
        throw std::runtime_error("end");
    });
    worker.post([&, told = tellingOf(before)] { ran = true; });
    mayThrow.set_value();
    before.get_future().wait();
    worker.post([&, told = tellingOf(after)] { ran = true; });
    after.get_future().wait();
    worker.stop();
    EXPECT_FALSE(ran);
    const auto lines = log.told();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[1], "error orbelantine::IoThread::Queue::run() EndedThread has ended by an "
                        "exception: all that it is asked fails");
}

TEST(IoThread, StopInterruptsATaskUntilItEndsAndRunsNoOther) {
    IoThread worker("InterruptedThread");
    std::promise<void> begun;
    std::promise<void> interrupted;
    int interruptions = 0;
    bool ran = false;
    worker.post([&] {
        begun.set_value();
        interrupted.get_future().wait();
    });
    worker.post([&] { ran = true; });
    begun.get_future().wait();
    worker.stop([&] {
        if (++interruptions == 2)
            interrupted.set_value();
    });
    EXPECT_EQ(interruptions, 2);
    EXPECT_FALSE(ran);
}

TEST(IoThread, MayBeDestroyedInItsOwnTask) {
    auto worker = std::make_unique<IoThread>("OwnEndThread");
    IoThread* const posted = worker.get();
    const auto weak = worker->weak();
    std::promise<void> dropped;
    posted->post([&, told = tellingOf(dropped)] {
        EXPECT_TRUE(worker->isCurrent());
        worker.reset();
    });
    dropped.get_future().wait();
    IoThread::post(weak, [] { FAIL(); });
}

struct Plain : boost::exception {};

TEST(SafeIoService, FaultAloneIsLoggedAndToldAndEndsTheRun) {
    const struct {
        const char* description;
        std::function<void()> fault;
        const char* logBegins;
        const char* told;
        bool logHasDiagnostics;
    } cases[] = {
        {"ours", [] { BOOST_THROW_EXCEPTION(Exception("gone")); }, "() ", "gone", true},
        {"standard", [] { throw std::runtime_error("cold"); }, "() (what: cold) ", "cold", true},
        {"Boost's", [] { throw Plain(); }, "() ", "Plain", true},
        {"else", [] { throw 5; }, "() unexpected exception!", "int", false},
    };

    std::vector<std::string> told;
    const boost::signals2::scoped_connection slot =
        ioServiceExceptionSignal().connect([&](const std::string& text) { told.push_back(text); });
    for (const auto& each : cases) {
        SCOPED_TRACE(each.description);
        CapturedLog log(kLogError);
        boost::asio::io_context ioService;
        bool wentOn = false;
        boost::asio::post(ioService, each.fault);
        boost::asio::post(ioService, [&] { wentOn = true; });
        safeIoServiceRunWithPtr(&ioService);
        EXPECT_FALSE(wentOn);
        ASSERT_EQ(told.size(), 1u);
        EXPECT_NE(told[0].find(each.told), std::string::npos) << told[0];
        const std::string line = std::string("error orbelantine::safeIoServiceRunWithPtr") +
                                 each.logBegins + (each.logHasDiagnostics ? told[0] : "");
        EXPECT_EQ(log.told(), Texts{line});
        told.clear();
    }
    boost::asio::io_context quiet;
    int ran = 0;
    boost::asio::post(quiet, [&] { ++ran; });
    boost::asio::post(quiet, [&] { quiet.stop(); });
    boost::asio::post(quiet, [&] { ++ran; });
    safeIoServiceRunWithPtr(&quiet);
    EXPECT_EQ(ran, 1) << "what has not begun by the stop doesn't run";
    EXPECT_TRUE(told.empty());
}

} // namespace
} // namespace orbelantine::test
