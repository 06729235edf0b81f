#include "input/android/VelocityTracker.h"

#include "tests/input/Traces.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace android {

namespace {

using orbelantine::kLogDebug;
using orbelantine::test::CapturedLog;
using orbelantine::test::Cells;
using orbelantine::test::readTrace;
using orbelantine::test::split;

constexpr std::int64_t kMs = 1000000;
constexpr const char* kNames[] = {"lsq1",         "lsq2", "lsq3", "wlsq2-delta", "wlsq2-central",
                                  "wlsq2-recent", "int1", "int2", "legacy"};

constexpr IdBits idBits(std::initializer_list<std::uint32_t> ids) {
    IdBits bits;
    for (const std::uint32_t id : ids)
        bits.value |= IdBits::of(id).value;
    return bits;
}

float number(const std::string& text) {
    return std::strtof(text.c_str(), nullptr);
}

/// "id x y" for each pointer.
struct Sample {
    IdBits ids;
    std::vector<std::uint32_t> idList;
    std::vector<Position> positions;

    explicit Sample(const std::string& text) {
        const Cells cells = split(text, ' ');
        for (std::size_t i = 0; i < cells.size(); i += 3) {
            idList.push_back(static_cast<std::uint32_t>(std::stoul(cells[i])));
            ids.value |= IdBits::of(idList.back()).value;
            positions.push_back({number(cells[i + 1]), number(cells[i + 2])});
        }
    }
};

/// "degree confidence vx vy" for each pointer. Exact: both sides round each operation to single
/// precision, in the same order.
void expectEstimates(const VelocityTracker& tracker, const Sample& sample,
                     const std::string& text) {
    const Cells cells = split(text, ' ');
    ASSERT_EQ(cells.size(), 4 * sample.idList.size());
    for (std::size_t i = 0; i < sample.idList.size(); ++i) {
        const auto* expected = &cells[4 * i];
        Estimator estimator;
        EXPECT_TRUE(tracker.getEstimator(sample.idList[i], estimator));
        EXPECT_EQ(estimator.degree, std::stoul(expected[0]));
        EXPECT_EQ(estimator.confidence, number(expected[1]));
        Position velocity;
        const bool known = tracker.getVelocity(sample.idList[i], velocity.x, velocity.y);
        EXPECT_EQ(known, estimator.degree > 0);
        EXPECT_EQ(velocity.x, number(expected[2]));
        EXPECT_EQ(velocity.y, number(expected[3]));
    }
}

TEST(VelocityTracker, EstimatesAsTheTracesSay) {
    const auto rows = readTrace("tracker.csv");
    constexpr std::size_t kFirst = 3;
    for (std::size_t column = kFirst; column < rows[0].size(); ++column) {
        const std::string& name = rows[0][column];
        VelocityTracker tracker(name.c_str());
        for (std::size_t row = 1; row < rows.size(); ++row) {
            const Cells& cells = rows[row];
            SCOPED_TRACE(name + ", " + cells[0] + " at " + cells[1]);
            if (cells[0] != rows[row - 1][0])
                tracker.clear();
            const Sample sample(cells[2]);
            tracker.addMovement(std::stoll(cells[1]), sample.ids, sample.positions.data());
            expectEstimates(tracker, sample, cells[column]);
        }
    }
}

TEST(VelocityTracker, SecondDegreeTellsTheAcceleration) {
    const std::pair<const char*, float> halfAccelerations[] = {
        {"lsq1", 0.0F}, {"lsq2", 100.0F}, {"int2", 100.0F}, {"legacy", 0.0F}};
    for (const auto& [name, expected] : halfAccelerations) {
        VelocityTracker tracker(name);
        for (const int i : {0, 1, 2}) {
            const auto x = static_cast<float>(i * i);
            const Position position{x, -x};
            tracker.addMovement(100 * kMs + i * 10 * kMs, idBits({0}), &position);
        }
        Estimator estimator;
        EXPECT_TRUE(tracker.getEstimator(0, estimator));
        EXPECT_EQ(estimator.time, 120 * kMs) << name;
        EXPECT_NEAR(estimator.xCoeff[0], name == std::string("lsq1") ? 3.67F : 4, 0.01F) << name;
        EXPECT_NEAR(estimator.yCoeff[2], -expected * 100, 1.0F) << name;
    }
}

TEST(VelocityTracker, CopyHoldsAllStateInItsOwnMemory) {
    for (const char* name : kNames) {
        SCOPED_TRACE(name);
        const auto add = [](VelocityTracker& tracker, int i) {
            const Position positions[] = {{static_cast<float>(i * i), 1}, {2, 3}};
            tracker.addMovement(i * 10 * kMs, idBits({1, 2}), positions);
        };
        VelocityTracker original(name);
        for (const int i : {0, 1, 2})
            add(original, i);
        VelocityTracker copy(original);
        VelocityTracker same(name);
        same = original;
        VelocityTracker other(name == std::string("legacy") ? "int1" : "legacy");
        other = original;
        add(original, 3);
        Estimator expected;
        EXPECT_TRUE(original.getEstimator(1, expected));
        original.clear();
        for (VelocityTracker* each : {&copy, &same, &other}) {
            EXPECT_STREQ(each->strategyName(), name);
            EXPECT_EQ(each->activePointerId(), 1);
            add(*each, 3);
            Estimator estimator;
            EXPECT_TRUE(each->getEstimator(1, estimator));
            EXPECT_EQ(estimator.xCoeff, expected.xCoeff);
            EXPECT_EQ(estimator.confidence, expected.confidence);
        }
    }
}

TEST(VelocityTracker, UnknownNameFallsBackToTheDefault) {
    CapturedLog log(kLogDebug);
    EXPECT_STREQ(VelocityTracker().strategyName(), "lsq2");
    EXPECT_TRUE(log.told().empty());
    const std::string unrecognized = "debug Unrecognized velocity tracker strategy name 'LSQ2'.";
    EXPECT_STREQ(VelocityTracker("LSQ2").strategyName(), "lsq2");
    EXPECT_EQ(log.told(), std::vector{unrecognized});

    const char* usual = std::exchange(VelocityTracker::defaultStrategyName, "LSQ2");
    VelocityTracker none;
    VelocityTracker copy(none);
    VelocityTracker::defaultStrategyName = usual;
    EXPECT_EQ(
        log.told(),
        (std::vector<std::string>{
            unrecognized, "error Could not create the default velocity tracker strategy 'LSQ2'!"}));
    const Position position{1, 2};
    copy.addMovement(0, idBits({0}), &position);
    copy.clear();
    Estimator estimator;
    EXPECT_FALSE(copy.getEstimator(0, estimator));
}

TEST(VelocityTracker, SixteenPointersAreKnownAndTheLowestIsActiveUntilItLeaves) {
    const std::vector<Position> positions(18, Position{1, 1});
    VelocityTracker tracker;
    const std::pair<IdBits, int> steps[] = {
        {idBits({4, 7}), 4}, {idBits({2, 4}), 4}, {idBits({2, 7}), 2}, {idBits({}), -1}};
    for (const auto& [ids, active] : steps) {
        tracker.addMovement(0, ids, positions.data());
        EXPECT_EQ(tracker.activePointerId(), active);
    }
    IdBits many;
    for (std::uint32_t id = 3; id < 21; ++id)
        many.value |= IdBits::of(id).value;
    tracker.addMovement(0, many, positions.data());
    Estimator estimator;
    EXPECT_TRUE(tracker.getEstimator(18, estimator));
    EXPECT_FALSE(tracker.getEstimator(19, estimator));
}

TEST(VelocityTrackerStrategy, APointerThatIsClearedOrUnknownHasNoEstimate) {
    const Position positions[] = {{1, 2}, {30, 40}, {5, 6}};
    for (const char* name : kNames) {
        const auto strategy = createStrategy(name, nullptr);
        strategy->addMovement(0, idBits({0, 9, 31}), positions);
        strategy->clearPointers(idBits({0, 31}));
        for (const std::uint32_t id : {0U, 31U, 4U}) {
            Estimator estimator{.degree = 7, .confidence = 7};
            EXPECT_FALSE(strategy->getEstimator(id, estimator)) << name;
            EXPECT_EQ(estimator.degree + estimator.confidence, 0) << name;
        }
        Estimator estimator;
        EXPECT_TRUE(strategy->getEstimator(9, estimator)) << name;
        EXPECT_EQ(estimator.xCoeff[0] + estimator.yCoeff[0], 70) << name;
    }
}

} // namespace

} // namespace android
