#include "input/sources/AbsoluteMouseSource.h"

#include "tests/input/FakeInputContext.h"
#include "tests/input/RecordingTarget.h"
#include "tests/support/CapturedLog.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <tuple>

namespace orbelantine {
namespace {

using test::InputFrame;
using Frames = std::vector<InputFrame>;
using Strings = std::vector<std::string>;

InputFrame mouse(std::uint8_t event, std::int32_t x, std::int32_t y) {
    return {.mediaType = 10, .event = event, .x = x, .y = y};
}

struct AbsoluteMouseSourceTest : testing::Test, AbsoluteMouseSource {
    boost::shared_ptr<test::FakeInputContext> context =
        boost::make_shared<test::FakeInputContext>();
    boost::shared_ptr<test::RecordingTarget> target = boost::make_shared<test::RecordingTarget>();

    AbsoluteMouseSourceTest() {
        start(context);
        registerTarget(target);
    }

    /// Where a move to a point arrives.
    std::pair<int, int> moved(std::int32_t x, std::int32_t y) {
        mouseMove(x, y, 0);
        const Frames frames = target->take();
        return frames.size() == 1 ? std::pair(frames[0].x, frames[0].y) : std::pair(-1, -1);
    }
};

TEST_F(AbsoluteMouseSourceTest, PositionIsClampedScaledAndTurned) {
    using Place = std::pair<int, int>;
    const std::tuple<int, Place, Place> cases[] = {{0, {0, 0}, {0, 0}},
                                                   {0, {1000, 500}, {65535, 65535}},
                                                   {0, {1001, 9999}, {65535, 65535}},
                                                   {0, {-10, -1}, {0, 0}},
                                                   {0, {1, 1}, {65, 131}},
                                                   {0, {999, 499}, {65469, 65403}},
                                                   {90, {0, 0}, {65535, 0}},
                                                   {90, {1, 1}, {65404, 65}},
                                                   {180, {1, 1}, {65470, 65404}},
                                                   {270, {1, 1}, {131, 65470}},
                                                   {45, {1001, 1}, {1000, 1}}};
    for (const auto& [angle, at, sent] : cases) {
        mOrientationAngle = angle;
        EXPECT_EQ(moved(at.first, at.second), sent)
            << angle << ": " << at.first << ", " << at.second;
    }
    // Without area it is only clamped.
    context->rect = {5, 5, 5, 505};
    EXPECT_EQ(moved(7, 300), Place(0, 300));
    context->rect = {5, 505, 1005, 5};
    EXPECT_EQ(moved(7, 300), Place(7, 0));
    context->answers = false;
    EXPECT_EQ(moved(7, 300), Place(0, 0));
}

TEST_F(AbsoluteMouseSourceTest, EachEventGivesItsFrame) {
    mouseMove(1, 1, 0);
    mouseLButton(true, 1, 1, 0, true);
    mouseLButton(false, 1, 1, 0, false);
    touch(true, 1, 1, 7, false);
    touchMove(1, 1, 263);
    touch(false, 1, 1, 7, false);
    mouseWheel(true, 8, 9, 3);
    mouseWheel(false, 8, 9, -2);
    const auto contact = [](std::uint8_t event) {
        return InputFrame{.mediaType = 28, .ch = 7, .event = event, .x = 65, .y = 131};
    };
    EXPECT_EQ(target->take(),
              (Frames{mouse(0, 65, 131), mouse(2, 65, 131), mouse(1, 65, 131), contact(2),
                      contact(0), contact(1), mouse(5, 0, 0x03000000), mouse(6, 0, -16777217)}));
    mouseRButton(true, 1, 1, false);
    rawMouseMove(1, 1);
    killFocus();
    stop();
    EXPECT_EQ(target->take(), Frames());
    EXPECT_TRUE(isAbsolute());
}

TEST_F(AbsoluteMouseSourceTest, CaptureFollowsTheCountOfPresses) {
    const Strings taken{"setCaptureMouseExclusively"}, released{"releaseCaptureMouseExclusively"};
    // An up too many, as the sixth: no press captures from there on.
    const std::pair<bool, Strings> clicks[] = {{true, taken}, {true, {}},        {false, released},
                                               {true, taken}, {false, released}, {false, {}},
                                               {true, {}},    {false, {}},       {true, {}}};
    for (const auto& [down, calls] : clicks) {
        mouseLButton(down, 1, 1, 0, false);
        EXPECT_EQ(context->takeCalls(), calls);
    }
}

TEST_F(AbsoluteMouseSourceTest, LogTellsPositionsAndAnUnknownAngle) {
    test::CapturedLog log(kLogInfo, "orbelantine::AbsoluteMouseSource::");
    mOrientationAngle = 91;
    touch(false, 2, 2, 1, false);
    EXPECT_EQ(log.told(), (test::Texts{"info leftClick() Before normalizing: up (2, 2)",
                                       "error normalizeMouseCoordinates: Cannot get orientation "
                                       "angle. Was RMI connection established",
                                       "info leftClick() After normalizing: up (2, 2)"}));
}

} // namespace
} // namespace orbelantine
