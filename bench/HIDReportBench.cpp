// Reports of every kind, from an input buffer to the bytes that go to the phone.

#include "avstack/IInputMediaBufferKeyboard.h"
#include "avstack/IInputMediaBufferMouse.h"
#include "bench/AllocationCounter.h"
#include "core/common/config/KVStore.h"
#include "hid/reports/HIDMediaReportConverter.h"
#include "hid/reports/HIDReport.h"
#include "hid/reports/HIDReportLayout.h"
#include "hid/reports/HIDReportState.h"

#include <benchmark/benchmark.h>
#include <boost/smart_ptr/make_shared_object.hpp>

namespace orbelantine {

namespace {

using Buffers = std::pair<boost::shared_ptr<IMediaBuffer>, boost::shared_ptr<IMediaBuffer>>;

Buffers mouseMoves() {
    const auto move = [](std::int32_t delta) {
        return boost::make_shared<IInputMediaBufferMouse>(
            IInputMediaBufferMouse::EventData{.x = delta,
                                              .y = -delta,
                                              .type = IInputMediaBufferMouse::Move,
                                              .maxX = 0,
                                              .maxY = 0},
            false, std::uint64_t{0});
    };
    return {move(3), move(-4)};
}

/// A key's press and release.
Buffers keyStroke(std::uint8_t scanCode) {
    const auto key = [scanCode](std::uint8_t type) {
        return boost::make_shared<IInputMediaBufferKeyboard>(scanCode, type, ~0U, false);
    };
    return {key(IInputMediaBufferKeyboard::KeyDown), key(IInputMediaBufferKeyboard::KeyUp)};
}

/// One iteration is one report; the two buffers take turns.
void convert(benchmark::State& run, const Buffers& buffers, std::uint32_t mode) {
    HIDMediaReportConverter converter{KVStore()};
    HIDReportState state;
    bool second = false;
    const bench::AllocationCounter allocations;
    for (auto _ : run) {
        HIDReport report;
        const auto& buffer = second ? buffers.second : buffers.first;
        if (!converter.convertToReport(buffer, mode, state, report))
            run.SkipWithError("no report");
        benchmark::DoNotOptimize(report.data);
        benchmark::ClobberMemory();
        second = !second;
    }
    run.counters["allocations"] = benchmark::Counter(static_cast<double>(allocations.count()),
                                                     benchmark::Counter::kAvgIterations);
}

/// The bytes alone, as the floor of what a conversion can cost.
template <class Write>
void assemble(benchmark::State& run, Write write) {
    const bench::AllocationCounter allocations;
    std::int32_t value = 0;
    for (auto _ : run) {
        HIDReport report;
        benchmark::DoNotOptimize(++value);
        write(report, value);
        benchmark::DoNotOptimize(report.data);
        benchmark::ClobberMemory();
    }
    run.counters["allocations"] = benchmark::Counter(static_cast<double>(allocations.count()),
                                                     benchmark::Counter::kAvgIterations);
}

constexpr std::uint32_t kAnyMode = HIDMediaReportConverter::kRelative;
constexpr std::array<std::uint8_t, 6> kKeys{4, 5, 6};

// In the key tables these lead to each kind of report.
constexpr std::uint8_t kScanA = 30;
constexpr std::uint8_t kScanConsumerHigh = 199;
constexpr std::uint8_t kScanConsumerLow = 175;
constexpr std::uint8_t kScanSystemControl = 254;

BENCHMARK_CAPTURE(convert, relative_mouse, mouseMoves(), HIDMediaReportConverter::kRelative)
    ->Name("report/relative_mouse");
BENCHMARK_CAPTURE(convert, absolute_mouse, mouseMoves(), HIDMediaReportConverter::kAbsolute)
    ->Name("report/absolute_mouse");
BENCHMARK_CAPTURE(convert, digitizer, mouseMoves(), HIDMediaReportConverter::kDigitizer)
    ->Name("report/digitizer");
BENCHMARK_CAPTURE(convert, keyboard, keyStroke(kScanA), kAnyMode)->Name("report/keyboard");
BENCHMARK_CAPTURE(convert, consumer_high, keyStroke(kScanConsumerHigh), kAnyMode)
    ->Name("report/consumer_high");
BENCHMARK_CAPTURE(convert, consumer_low, keyStroke(kScanConsumerLow), kAnyMode)
    ->Name("report/consumer_low");
BENCHMARK_CAPTURE(convert, system_control, keyStroke(kScanSystemControl), kAnyMode)
    ->Name("report/system_control");

BENCHMARK_CAPTURE(assemble, relative_mouse, [](HIDReport& report, std::int32_t value) {
    writeRelativeMouse(report, 1, value, value, 0);
})->Name("report/relative_mouse/bare");
BENCHMARK_CAPTURE(assemble, absolute_mouse, [](HIDReport& report, std::int32_t value) {
    writeAbsoluteMouse(report, false, value, value);
})->Name("report/absolute_mouse/bare");
BENCHMARK_CAPTURE(assemble, digitizer, [](HIDReport& report, std::int32_t value) {
    writeDigitizer(report, false, value, value, static_cast<std::uint16_t>(value));
})->Name("report/digitizer/bare");
BENCHMARK_CAPTURE(assemble, keyboard, [](HIDReport& report, std::int32_t value) {
    writeKeyboard(report, static_cast<std::uint8_t>(value), kKeys);
})->Name("report/keyboard/bare");
BENCHMARK_CAPTURE(assemble, consumer, [](HIDReport& report, std::int32_t value) {
    writeConsumerControl(report, kReportConsumerHigh, static_cast<std::uint16_t>(value));
})->Name("report/consumer/bare");
BENCHMARK_CAPTURE(assemble, system_control, [](HIDReport& report, std::int32_t value) {
    writeSystemControl(report, static_cast<std::uint8_t>(value));
})->Name("report/system_control/bare");

} // namespace

} // namespace orbelantine
