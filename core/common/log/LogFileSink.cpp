#include "core/common/log/LogFileSink.h"

#include "core/common/log/LogLoggers.h"

#include <cstddef>
#include <utility>

namespace orbelantine {

namespace {

constexpr std::size_t kFileSize = 0x4000000;

} // namespace

LogFileSink::LogFileSink(const spdlog::filename_t& path)
    : mFile(path, kFileSize, kLogMaxIndex) {}

void LogFileSink::sink_it_(const spdlog::details::log_msg& message) {
    mFile.log(message);
    if (!mOldest)
        mOldest = message.time;
    if (isDue(message))
        flush_();
}

void LogFileSink::flush_() {
    mFile.flush();
    mOldest.reset();
}

void LogFileSink::set_formatter_(std::unique_ptr<spdlog::formatter> formatter) {
    mFile.set_formatter(std::move(formatter));
}

bool LogFileSink::isDue(const spdlog::details::log_msg& message) const {
    // The system's clock may have been set back meanwhile.
    const auto waited = message.time - *mOldest;
    return message.level >= spdlog::level::warn || waited >= kLogFlushDelay ||
           waited < spdlog::log_clock::duration::zero();
}

} // namespace orbelantine
