#include "core/common/run/IoThread.h"

#include "tests/support/CapturedLog.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <stdexcept>

namespace orbelantine {
namespace {

/// Tells of its task's end, be it run or dropped.
std::shared_ptr<void> tellingOf(std::promise<void>& end) {
    return {nullptr, [&](void*) { end.set_value(); }};
}

TEST(IoThread, ExceptionEndsItAndDropsWhatIsPostedBeforeAndAfter) {
    test::CapturedLog log(kLogError);
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
    const auto lines = log.take();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[1].text, "orbelantine::IoThread::Queue::run() EndedThread has ended by an "
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

} // namespace
} // namespace orbelantine
