// The search of a mouse delta, beside the copies and fits that it must do, and the velocity
// strategies that it may use.

#include "bench/AllocationCounter.h"
#include "input/android/LeastSquaresVelocityTrackerStrategy.h"
#include "input/android/VelocityTracker.h"
#include "input/sources/AndroidMouseReverser.h"
#include "tests/support/HandClock.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace orbelantine {

namespace {

using android::IdBits;
using android::Position;
using Strategy = android::LeastSquaresVelocityTrackerStrategy;

constexpr std::int64_t kStepNs = 5000000;
constexpr int kHistory = 20;
constexpr std::int64_t kNow = kHistory * kStepNs;
constexpr std::int32_t kSpeed = 30;
// A delta of 300 at full speed, and the deltas that the search tries for it.
constexpr std::int32_t kWanted = 300;
constexpr std::int32_t kCandidates[] = {300, 150, 75, 112, 93, 102, 97, 99, 100};

void reportAllocations(benchmark::State& run, const bench::AllocationCounter& allocations) {
    run.counters["allocations"] = benchmark::Counter(static_cast<double>(allocations.count()),
                                                     benchmark::Counter::kAvgIterations);
}

void reverse(benchmark::State& run) {
    test::HandClock clock;
    AndroidMouseReverser reverser(clock);
    for (int i = 0; i < kHistory; ++i) {
        std::int32_t dx = kSpeed;
        std::int32_t dy = 0;
        reverser.applyMove(dx, dy, i * kStepNs);
    }
    clock.advance(std::chrono::nanoseconds(kNow));
    const bench::AllocationCounter allocations;
    for (auto _ : run) {
        std::int32_t dx = kWanted;
        std::int32_t dy = 0;
        reverser.reverse(dx, dy);
        benchmark::DoNotOptimize(dy);
        if (dx != kCandidates[std::size(kCandidates) - 1])
            run.SkipWithError("another search than was meant");
    }
    reportAllocations(run, allocations);
}

/// For each candidate one block copy of the history and one fit.
void copiesAndFits(benchmark::State& run) {
    Strategy live(2);
    Position position;
    for (int i = 0; i < kHistory; ++i) {
        position.x += kSpeed;
        live.addMovement(i * kStepNs, IdBits::of(0), &position);
    }
    for (auto _ : run) {
        for (const std::int32_t candidate : kCandidates) {
            Strategy trial(live);
            const Position moved{position.x + static_cast<float>(candidate), 0};
            trial.addMovement(kNow, IdBits::of(0), &moved);
            android::Estimator estimator;
            benchmark::DoNotOptimize(trial.getEstimator(0, estimator));
            benchmark::DoNotOptimize(std::hypot(estimator.xCoeff[1], estimator.yCoeff[1]));
        }
    }
}

/// One iteration is one sample and the velocity after it.
void track(benchmark::State& run, const char* strategy) {
    android::VelocityTracker tracker(strategy);
    std::int64_t time = 0;
    Position position;
    const bench::AllocationCounter allocations;
    for (auto _ : run) {
        time += kStepNs;
        position.x += 3;
        tracker.addMovement(time, IdBits::of(0), &position);
        float vx = 0;
        float vy = 0;
        benchmark::DoNotOptimize(tracker.getVelocity(0, vx, vy));
        benchmark::DoNotOptimize(vx);
        benchmark::DoNotOptimize(vy);
    }
    reportAllocations(run, allocations);
}

BENCHMARK(reverse)->Name("BM_Reverse/ours");
BENCHMARK(copiesAndFits)->Name("BM_Reverse/bare");

BENCHMARK_CAPTURE(track, lsq1, "lsq1")->Name("velocity/lsq1");
BENCHMARK_CAPTURE(track, lsq2, "lsq2")->Name("velocity/lsq2");
BENCHMARK_CAPTURE(track, lsq3, "lsq3")->Name("velocity/lsq3");
BENCHMARK_CAPTURE(track, wlsq2_delta, "wlsq2-delta")->Name("velocity/wlsq2-delta");
BENCHMARK_CAPTURE(track, wlsq2_central, "wlsq2-central")->Name("velocity/wlsq2-central");
BENCHMARK_CAPTURE(track, wlsq2_recent, "wlsq2-recent")->Name("velocity/wlsq2-recent");
BENCHMARK_CAPTURE(track, int1, "int1")->Name("velocity/int1");
BENCHMARK_CAPTURE(track, int2, "int2")->Name("velocity/int2");
BENCHMARK_CAPTURE(track, legacy, "legacy")->Name("velocity/legacy");

} // namespace

} // namespace orbelantine
