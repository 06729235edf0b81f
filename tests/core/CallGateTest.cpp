#include "core/common/run/CallGate.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace orbelantine {
namespace {

constexpr std::chrono::milliseconds kLongBound{60000};
constexpr std::chrono::milliseconds kShortBound{1};

TEST(CallGate, LetsCallsInUntilItIsShut) {
    CallGate gate;
    {
        const CallGate::Call outer(gate);
        const CallGate::Call inner(gate);
        EXPECT_TRUE(outer.inside() && inner.inside());
    }
    EXPECT_TRUE(gate.shut(kLongBound));
    EXPECT_FALSE(CallGate::Call(gate).inside());
    EXPECT_TRUE(gate.shut(kLongBound));
}

TEST(CallGate, ShuttingGivesUpOnACallThatStays) {
    CallGate gate;
    auto call = std::make_unique<CallGate::Call>(gate);
    EXPECT_FALSE(gate.shut(kShortBound));
    EXPECT_FALSE(CallGate::Call(gate).inside());
    call.reset();
    EXPECT_TRUE(gate.shut(kShortBound));
}

TEST(CallGate, ShuttingEndsWithTheLastCall) {
    CallGate gate;
    auto call = std::make_unique<CallGate::Call>(gate);
    std::thread leaver([&] {
        while (CallGate::Call(gate).inside())
            std::this_thread::yield();
        call.reset();
    });
    EXPECT_TRUE(gate.shut(kLongBound));
    leaver.join();
}

} // namespace
} // namespace orbelantine
