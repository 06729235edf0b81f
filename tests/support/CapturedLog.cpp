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

CapturedLog::CapturedLog(unsigned level, std::string prefix)
    : mSink(std::make_shared<Sink>())
    , mPrefix(std::move(prefix)) {
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

std::vector<std::string> CapturedLog::told() {
    static constexpr const char* kLevels[] = {"trace ",   "debug ", "info ",
                                              "warning ", "error ", "critical "};
    std::vector<std::string> texts;
    for (const auto& [level, text] : take())
        texts.push_back(kLevels[level] +
                        text.substr(text.starts_with(mPrefix) ? mPrefix.size() : 0));
    return texts;
}

std::vector<std::string> CapturedLog::missing(std::vector<std::string> parts) {
    std::erase_if(parts, [lines = told()](const std::string& part) {
        return std::ranges::any_of(
            lines, [&](const auto& line) { return line.find(part) != std::string::npos; });
    });
    return parts;
}

void PrintTo(const CapturedLog::Line& line, std::ostream* out) {
    *out << line.level << ' ' << line.text;
}

} // namespace orbelantine::test
