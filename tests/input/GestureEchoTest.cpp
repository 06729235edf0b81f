#include "examples/gesture_echo/GestureEcho.h"

#include "tests/input/FakeInputContext.h"
#include "tests/input/FakeWindowApi.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

namespace orbelantine {
namespace {

using namespace std::chrono_literals;

/// A pointer whose movements come back over the surface, as the system's do.
struct EchoingPointer final : IPointerInjector {
    IInputContext& surface;
    test::Journal journal;

    explicit EchoingPointer(IInputContext& over)
        : surface(over) {}

    void injectMouseInput(std::int16_t dx, std::int16_t dy) override {
        journal.note(test::spaced(dx, dy));
        surface.onRelativeMouseMove(dx, dy);
    }

    void injectMouseInput(LeftDown) override {}

    void injectMouseInput(LeftUp) override {}

    void injectMouseInput(RightDown) override {}

    void injectMouseInput(RightUp) override {}
};

TEST(GestureEchoTest, AFlickOverASurfaceMovesThePointerFiveTimesMore) {
    test::HandClock clock;
    clock.advance(1s);
    test::FakeInputContext surface;
    EchoingPointer pointer(surface);
    example::GestureEcho echo(surface, pointer, clock);
    const auto settle = [&] { echo.controller().postAndWait([](const auto&) {}); };
    const auto later = [&] {
        settle();
        clock.advance(10ms);
        settle();
    };
    settle();
    surface.onMouseClickDown(IInputContext::MouseButtonRight, 1, 1);
    surface.onMouseClickDown(IInputContext::MouseButtonLeft, 1, 1);
    for (int i = 0; i < 3; ++i) {
        later();
        surface.onRelativeMouseMove(40000, -7);
    }
    later();
    surface.onMouseClickUp(IInputContext::MouseButtonLeft, 1, 1);
    for (int i = 0; i < 9; ++i)
        later();
    EXPECT_EQ(pointer.journal.take(), test::Names(5, "32767 -7"));
}

} // namespace
} // namespace orbelantine
