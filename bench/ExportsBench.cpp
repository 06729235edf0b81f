#include "tests/binding/Library.h"

#include <benchmark/benchmark.h>

#include <map>
#include <string>

// A call from C++ through the flat exports, beside what it must do at least.

namespace orbelantine {
namespace {

using Handle = void*;

struct Store {
    test::Library& library = test::Library::instance();
    Handle handle = library.common<Handle()>("new_KVStore__SWIG_0")();

    Store() {
        library.common<void(Handle, const char*, int)>("KVStore_setIntAt")(handle, "mouseType", 7);
        library.common<void(Handle, const char*, const char*)>("KVStore_setStringAt")(
            handle, "peerAddress", "00:11:22:33:44:55");
    }

    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    ~Store() { library.common<void(Handle)>("delete_KVStore")(handle); }
};

void exportedInt(benchmark::State& state) {
    Store store;
    const auto get =
        store.library.common<int(Handle, const char*, int)>("KVStore_getIntAt__SWIG_0");
    for (auto _ : state)
        benchmark::DoNotOptimize(get(store.handle, "mouseType", 0));
}

void bareInt(benchmark::State& state) {
    std::map<std::string, int> map = {{"mouseType", 7}};
    for (auto _ : state)
        benchmark::DoNotOptimize(map.find(std::string("mouseType"))->second);
}

void exportedString(benchmark::State& state) {
    Store store;
    const auto get = store.library.common<void*(Handle, const char*, const char*)>(
        "KVStore_getStringAt__SWIG_0");
    for (auto _ : state)
        benchmark::DoNotOptimize(store.library.takeText(get(store.handle, "peerAddress", nullptr)));
}

void bareString(benchmark::State& state) {
    std::map<std::string, std::string> map = {{"peerAddress", "00:11:22:33:44:55"}};
    for (auto _ : state)
        benchmark::DoNotOptimize(std::string(map.find(std::string("peerAddress"))->second));
}

BENCHMARK(exportedInt)->Name("BM_ExportGetInt/ours");
BENCHMARK(bareInt)->Name("BM_ExportGetInt/bare");
BENCHMARK(exportedString)->Name("BM_ExportGetString/ours");
BENCHMARK(bareString)->Name("BM_ExportGetString/bare");

} // namespace
} // namespace orbelantine
