#pragma once

#include "core/common/log/Log.h"
#include "core/common/log/Spdlog.h"

#include <spdlog/sinks/base_sink.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine::test {

/// What native code logs at `level` and above, as long as this object lives. Nothing goes to a
/// file.
class CapturedLog {
  public:
    struct Line {
        unsigned level;
        std::string text;
        bool operator==(const Line&) const = default;
    };

    explicit CapturedLog(unsigned level)
        : mSink(std::make_shared<Sink>()) {
        set_disable_file_log(true);
        set_log_level(level);
        lumiport_log(kLogCritical, kNativeLogTag, "makes the logger");
        spdlog::get(kNativeLogTag)->sinks().push_back(mSink);
    }

    ~CapturedLog() {
        auto& sinks = spdlog::get(kNativeLogTag)->sinks();
        sinks.erase(std::remove(sinks.begin(), sinks.end(), mSink), sinks.end());
        set_log_level(kLogOff);
    }

    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    /// The lines since the last call.
    [[nodiscard]] std::vector<Line> take() { return std::exchange(mSink->lines, {}); }

  private:
    struct Sink final : spdlog::sinks::base_sink<std::mutex> {
        std::vector<Line> lines;

        void sink_it_(const spdlog::details::log_msg& message) override {
            lines.push_back({static_cast<unsigned>(message.level),
                             std::string(message.payload.data(), message.payload.size())});
        }

        void flush_() override {}
    };

    std::shared_ptr<Sink> mSink;
};

inline void PrintTo(const CapturedLog::Line& line, std::ostream* out) {
    *out << line.level << ' ' << line.text;
}

} // namespace orbelantine::test
