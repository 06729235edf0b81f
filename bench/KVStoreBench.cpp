#include "core/common/config/KVStore.h"

#include <benchmark/benchmark.h>

#include <map>
#include <string>

namespace {

using orbelantine::KVStore;

constexpr int kKeys = 16;

std::string keyOf(int i) {
    return "inputPipelineKey" + std::to_string(i);
}

void BM_KVStoreInt_ours(benchmark::State& state) {
    KVStore store;
    for (int i = 0; i < kKeys; ++i)
        store.setIntAt(keyOf(i), i);
    const std::string key = keyOf(kKeys / 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(store.getIntAt(key));
}

void BM_KVStoreInt_bare(benchmark::State& state) {
    std::map<std::string, int> values;
    for (int i = 0; i < kKeys; ++i)
        values[keyOf(i)] = i;
    const std::string key = keyOf(kKeys / 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(values.find(key)->second);
}

void BM_KVStoreString_ours(benchmark::State& state) {
    KVStore store;
    for (int i = 0; i < kKeys; ++i)
        store.setStringAt(keyOf(i), keyOf(i));
    const std::string key = keyOf(kKeys / 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(store.getStringAt(key).data());
}

void BM_KVStoreString_bare(benchmark::State& state) {
    std::map<std::string, std::string> values;
    for (int i = 0; i < kKeys; ++i)
        values[keyOf(i)] = keyOf(i);
    const std::string key = keyOf(kKeys / 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(values.find(key)->second.data());
}

BENCHMARK(BM_KVStoreInt_ours)->Name("BM_KVStoreInt/ours");
BENCHMARK(BM_KVStoreInt_bare)->Name("BM_KVStoreInt/bare");
BENCHMARK(BM_KVStoreString_ours)->Name("BM_KVStoreString/ours");
BENCHMARK(BM_KVStoreString_bare)->Name("BM_KVStoreString/bare");

} // namespace
