#include "tests/binding/Library.h"

#include <benchmark/benchmark.h>
#include <boost/function.hpp>
#include <boost/signals2/signal.hpp>

// Firing a signal as a host does, beside the signal alone with the same slots.

namespace orbelantine {
namespace {

using Handle = void*;
using Function = boost::function<void(int)>;
using Signal = boost::signals2::signal<void(int)>;

template <int count>
struct Slots {
    int sum = 0;
    Signal signal;

    Slots() {
        const Function add = [this](int value) { sum += value; };
        for (int i = 0; i < count; ++i)
            signal.connect(add);
    }
};

template <int count>
void exported(benchmark::State& state) {
    Slots<count> slots;
    const auto fire = test::Library::instance().common<void(Handle, int)>("SignalIntCallback_call");
    for (auto _ : state)
        fire(&slots.signal, 1);
    benchmark::DoNotOptimize(slots.sum);
}

template <int count>
void bare(benchmark::State& state) {
    Slots<count> slots;
    for (auto _ : state)
        slots.signal(1);
    benchmark::DoNotOptimize(slots.sum);
}

BENCHMARK(exported<0>)->Name("BM_SignalNoSlot/ours");
BENCHMARK(bare<0>)->Name("BM_SignalNoSlot/bare");
BENCHMARK(exported<1>)->Name("BM_SignalOneSlot/ours");
BENCHMARK(bare<1>)->Name("BM_SignalOneSlot/bare");
BENCHMARK(exported<8>)->Name("BM_SignalEightSlots/ours");
BENCHMARK(bare<8>)->Name("BM_SignalEightSlots/bare");

} // namespace
} // namespace orbelantine
