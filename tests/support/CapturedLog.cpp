#include "tests/support/CapturedLog.h"

#include "core/common/log/Spdlog.h"

#include <spdlog/sinks/base_sink.h>

#include <algorithm>
#include <mutex>
#include <utility>

namespace orbelantine::test {

struct CapturedLog::Sink final : spdlog::sinks::base_sink<std::mutex> {
    std::string prefix;
    std::vector<std::string> lines;

    void sink_it_(const spdlog::details::log_msg& message) override {
        std::string text(message.payload.data(), message.payload.size());
        if (text.starts_with(prefix))
            text.erase(0, prefix.size());
        const auto level = spdlog::level::to_string_view(message.level);
        lines.push_back(std::string(level.data(), level.size()) + ' ' + text);
    }

    void flush_() override {}
};

CapturedLog::CapturedLog(unsigned level, std::string prefix)
    : mSink(std::make_shared<Sink>()) {
    mSink->prefix = std::move(prefix);
    set_log_level(level);
    lumiport_log(kLogCritical, kNativeLogTag, "makes the logger");
    spdlog::get(kNativeLogTag)->sinks().push_back(mSink);
}

CapturedLog::~CapturedLog() {
    auto& sinks = spdlog::get(kNativeLogTag)->sinks();
    sinks.erase(std::remove(sinks.begin(), sinks.end(), mSink), sinks.end());
    set_log_level(kLogOff);
}

std::vector<std::string> CapturedLog::told() {
    return std::exchange(mSink->lines, {});
}

std::vector<std::string> CapturedLog::missing(std::vector<std::string> parts) {
    std::erase_if(parts, [lines = told()](const std::string& part) {
        return std::ranges::any_of(
            lines, [&](const auto& line) { return line.find(part) != std::string::npos; });
    });
    return parts;
}

} // namespace orbelantine::test
