#pragma once

#include "core/common/log/Spdlog.h"

#include <spdlog/sinks/base_sink.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>

namespace orbelantine {

/// The log's rotating file. A line of kLogWarning or above is on the disk when it returns; others
/// wait for the next line that comes kLogFlushDelay later, or for the end: so the file tells what
/// led to an abort, without a thread of its own.
class LogFileSink final : public spdlog::sinks::base_sink<std::mutex> {
  public:
    /// Throws spdlog_ex if the file can't be opened.
    explicit LogFileSink(const spdlog::filename_t& path);

  protected:
    void sink_it_(const spdlog::details::log_msg& message) override;
    void flush_() override;
    void set_formatter_(std::unique_ptr<spdlog::formatter> formatter) override;

  private:
    [[nodiscard]] bool isDue(const spdlog::details::log_msg& message) const;

    spdlog::sinks::rotating_file_sink_st mFile;
    // When the oldest line that is not on the disk was logged.
    std::optional<spdlog::log_clock::time_point> mOldest;
};

inline constexpr std::chrono::seconds kLogFlushDelay{1};

} // namespace orbelantine
