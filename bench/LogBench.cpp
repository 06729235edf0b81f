#include "core/common/log/Log.h"
#include "core/common/log/LogPaths.h"
#include "core/common/log/Spdlog.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <string>

namespace {

using namespace orbelantine;

constexpr const char* kTag = kNativeLogTag;
constexpr const char* kBareTag = "BARELOGS";
constexpr const char* kFormat = "%s() moved by %d, %d";
constexpr const char* kFunction = "orbelantine::RelativeMouseSource::move";

std::filesystem::path folder() {
    return std::filesystem::temp_directory_path() / "orbelantine_log_bench";
}

/// Another benchmark may log first.
[[maybe_unused]] const bool gFolderSet = (set_log_folder(toWide(folder()).c_str()), true);

void makeBareLogger() {
    constexpr std::size_t kFileSize = 0x4000000;
    const auto logger = spdlog::rotating_logger_mt(kBareTag, (folder() / "bare.log").native(),
                                                   kFileSize, get_log_max_index());
    logger->set_formatter(std::make_unique<spdlog::pattern_formatter>(
        "[%d/%m/%C %H:%M:%S.%e | tid:%t | %n | %l]: %v", spdlog::pattern_time_type::local, "\r\n"));
    logger->set_level(spdlog::level::info);
}

/// The service at info level for one benchmark, beside a plain logger with a file of the same form.
class InfoLevel {
  public:
    InfoLevel() {
        set_log_level(kLogInfo);
        lumiport_log(kLogInfo, kTag, "first");
        if (spdlog::get(kBareTag) == nullptr)
            makeBareLogger();
    }

    ~InfoLevel() { set_log_level(kLogOff); }

    InfoLevel(const InfoLevel&) = delete;
    InfoLevel& operator=(const InfoLevel&) = delete;
};

void BM_LogFiltered_ours(benchmark::State& state) {
    const InfoLevel level;
    for (auto _ : state)
        lumiport_log_fmt(kLogDebug, kTag, kFormat, kFunction, 3, -4);
}

void BM_LogFiltered_bare(benchmark::State& state) {
    const InfoLevel level;
    for (auto _ : state) {
        const char* tag = kTag;
        benchmark::DoNotOptimize(tag);
        const auto logger = spdlog::get(std::string(tag));
        benchmark::DoNotOptimize(logger->should_log(spdlog::level::debug));
    }
}

void BM_LogToFile_ours(benchmark::State& state) {
    const InfoLevel level;
    for (auto _ : state)
        lumiport_log_fmt(kLogInfo, kTag, kFormat, kFunction, 3, -4);
}

void BM_LogToFile_bare(benchmark::State& state) {
    const InfoLevel level;
    const auto logger = spdlog::get(kBareTag);
    for (auto _ : state)
        logger->info("{}() moved by {}, {}", kFunction, 3, -4);
}

BENCHMARK(BM_LogFiltered_ours)->Name("BM_LogFiltered/ours");
BENCHMARK(BM_LogFiltered_bare)->Name("BM_LogFiltered/bare");
BENCHMARK(BM_LogToFile_ours)->Name("BM_LogToFile/ours");
BENCHMARK(BM_LogToFile_bare)->Name("BM_LogToFile/bare");

} // namespace
