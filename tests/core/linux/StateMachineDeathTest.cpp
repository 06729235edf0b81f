#include "core/common/run/StateMachine.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace orbelantine {
namespace {

class Nothing {
  public:
    virtual ~Nothing() = default;
    [[nodiscard]] virtual std::string getName() const = 0;
};

class Machine final : public StateMachine<Machine, Nothing> {
  public:
    [[nodiscard]] std::string getName() const override { return "Machine"; }

    void join() { thread.join(); }

    void stop() { ioService.stop(); }
};

TEST(StateMachineDeathTest, MisuseEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            auto* const machine = new Machine;
            machine->postAndWait([machine](const auto&) { delete machine; });
        },
        "deadlock");
    EXPECT_DEATH(
        {
            Machine machine;
            machine.stop();
            machine.join();
        },
        "Invalid argument");
    EXPECT_DEATH(
        {
            Machine machine;
            machine.postAndWait([](const auto&) { throw std::runtime_error("from an event"); });
        },
        "from an event");
}

} // namespace
} // namespace orbelantine
