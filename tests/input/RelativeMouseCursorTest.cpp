#include "input/relative/RelativeCursor.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace orbelantine {

namespace {

constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();
constexpr CursorExtent kLogical{.width = 500, .height = 250};

// What is checked of a point or a delta.
using Pair = std::pair<std::int32_t, std::int32_t>;

Pair pairOf(const CursorPoint& point) {
    return {point.x, point.y};
}

Pair pairOf(const CursorDelta& delta) {
    return {delta.dx, delta.dy};
}

TEST(RelativeCursor, DistancesFollowTheirFactorsAndNeverLeaveTheirType) {
    EXPECT_EQ(pairOf(rotated({kLeast, 0}, 3)), (Pair{kGreatest, 0}));
    EXPECT_EQ(pairOf(rotated({5, 2}, 5)), (Pair{5, 2}));
    EXPECT_EQ(draggedLinearly(-5, 10, 0.16667F), -8);
    EXPECT_EQ(draggedLinearly(kLeast, 20, 1.2F), kLeast);
    EXPECT_EQ(draggedByRoot(30, 10, 1.2F), 18);
    EXPECT_EQ(draggedByRoot(0, 10, 1.2F), 0);
    const CursorExtent picture{.width = 1596, .height = 798};
    EXPECT_EQ(logicalExtent(picture, 2.0).width, 1000);
    EXPECT_EQ(logicalExtent(picture, 2.0).height, 500);
    EXPECT_EQ(logicalExtent(picture, 1.0).width, 1596);
    EXPECT_EQ(logicalExtent(picture, 3.0).width, 667);
}

TEST(RelativeCursor, PlacesAreRoundedAndStayOnTheScreen) {
    EXPECT_EQ(rescaled(1, 3, 5), 2);
    EXPECT_EQ(rescaled(1, 4, 5), 1);
    EXPECT_EQ(rescaled(0, 0, 5), 0);
    const CursorExtent surface{.width = 1000, .height = 500};
    EXPECT_EQ(pairOf(toLogical({.x = 333, .y = 333}, surface, kLogical)), (Pair{167, 167}));
    EXPECT_EQ(pairOf(toLogical({.x = -1, .y = 999}, surface, kLogical)), (Pair{0, 250}));
    const CursorPoint at{.x = 100, .y = 100, .flags = 1};
    EXPECT_EQ(pairOf(advanced(at, {-3, 7}, kLogical)), (Pair{97, 107}));
    EXPECT_EQ(pairOf(advanced(at, {-101, 150}, kLogical)), (Pair{0, 249}));
    EXPECT_EQ(pairOf(advanced(at, {1, 1}, {})), (Pair{0, 0}));
    EXPECT_EQ(advanced(toLogical(at, surface, kLogical), {1, 1}, kLogical).flags, 1U);
}

TEST(RelativeCursor, MovesOnAScaledScreenAreCurvedAndLongOnesCut) {
    const std::pair<CursorDelta, Pair> moves[] = {
        {{1, 0}, {3, 0}},    {{-10, 4}, {-11, 4}}, {{3, -4}, {5, -6}},       {{6, 157}, {2, 49}},
        {{160, 0}, {50, 0}}, {{161, 0}, {50, 0}},  {{-252, 336}, {-54, 72}}, {{0, -420}, {0, -90}}};
    for (const auto& [move, sent] : moves) {
        EXPECT_FALSE(isLongMove(move));
        EXPECT_EQ(pairOf(curved(move)), sent) << move.dx << ' ' << move.dy;
    }
    EXPECT_TRUE(isLongMove({421, 0}));
    EXPECT_EQ(pairOf(firstLegEnd({}, {600, 800})), (Pair{252, 336}));
    // Cut before it is added.
    EXPECT_EQ(pairOf(firstLegEnd({.x = 10, .y = 10}, {-500, -1})), (Pair{-409, 10}));
}

} // namespace

} // namespace orbelantine
