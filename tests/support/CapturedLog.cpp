#include "tests/support/CapturedLog.h"

#include "core/common/log/Spdlog.h"

#include <spdlog/sinks/base_sink.h>

#include <algorithm>
#include <mutex>
#include <ostream>
#include <utility>

namespace orbelantine::test {

struct CapturedLog::Sink final : spdlog::sinks::base_sink<std::mutex> {
    std::vector<Line> lines;

    void sink_it_(const spdlog::details::log_msg& message) override {
        lines.push_back({static_cast<unsigned>(message.level),
                         std::string(message.payload.data(), message.payload.size())});
    }

    void flush_() override {}
};

CapturedLog::CapturedLog(unsigned level)
    : mSink(std::make_shared<Sink>()) {
    set_log_level(level);
    lumiport_log(kLogCritical, kNativeLogTag, "makes the logger");
    spdlog::get(kNativeLogTag)->sinks().push_back(mSink);
}

CapturedLog::~CapturedLog() {
    auto& sinks = spdlog::get(kNativeLogTag)->sinks();
    sinks.erase(std::remove(sinks.begin(), sinks.end(), mSink), sinks.end());
    set_log_level(kLogOff);
}

std::vector<CapturedLog::Line> CapturedLog::take() {
    return std::exchange(mSink->lines, {});
}

void PrintTo(const CapturedLog::Line& line, std::ostream* out) {
    *out << line.level << ' ' << line.text;
}

} // namespace orbelantine::test
