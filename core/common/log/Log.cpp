#include "core/common/log/Log.h"

#include "core/common/log/LogLoggers.h"
#include "core/common/log/LogSettings.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace orbelantine {

namespace {

constexpr std::size_t kTextSize = 2048;
constexpr std::size_t kPrivateTagSize = 100;
constexpr const char* kPrivateTagPrefix = "ALL__";
constexpr const char* kRedacted = "[redacted]";
constexpr const char* kRedactedAfterFunction = "%s() [redacted]";

const char* orEmpty(const char* text) {
    return text != nullptr ? text : "";
}

/// The tag of private entries; a long one is cut.
class PrivateTag {
  public:
    explicit PrivateTag(const char* tag) {
        (void)std::snprintf(mText, sizeof mText, "%s%s", kPrivateTagPrefix, orEmpty(tag));
    }

    [[nodiscard]] const char* text() const { return mText; }

  private:
    char mText[kPrivateTagSize];
};

const char* redactedFormat(const char* format) {
    if (get_log_enable_private())
        return format;
    return std::strncmp(orEmpty(format), "%s()", 4) == 0 ? kRedactedAfterFunction : kRedacted;
}

/// For the service's texts, which any thread may read while the host sets them.
template <class Text>
void storeText(Text LogSettings::*member, const typename Text::value_type* text) {
    LogSettings& settings = LogSettings::instance();
    const std::lock_guard lock(settings.mutex);
    if (text != nullptr)
        settings.*member = text;
    else
        (settings.*member).clear();
}

std::wstring loadText(std::wstring LogSettings::*member) {
    LogSettings& settings = LogSettings::instance();
    const std::lock_guard lock(settings.mutex);
    return settings.*member;
}

} // namespace

void lumiport_log(unsigned level, const char* tag, const char* message) {
    const LogMessage entry(level, orEmpty(tag));
    if (entry.wanted())
        entry.write(orEmpty(message));
}

void lumiport_log_vfmt(unsigned level, const char* tag, const char* format,
                       std::va_list arguments) {
    const LogMessage entry(level, orEmpty(tag));
    if (!entry.wanted())
        return;
    char text[kTextSize];
    std::va_list again;
    va_copy(again, arguments);
    // What does not fit is cut; what is refused leaves what came before it, without an end.
    if (std::vsnprintf(text, sizeof text, orEmpty(format), arguments) < 0) {
        std::fill(std::begin(text), std::end(text), '\0');
        (void)std::vsnprintf(text, sizeof text, orEmpty(format), again);
    }
    va_end(again);
    entry.write(text);
}

void lumiport_log_fmt(unsigned level, const char* tag, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    lumiport_log_vfmt(level, tag, format, arguments);
    va_end(arguments);
}

void lumiport_log_private(unsigned level, const char* tag, const char* message) {
    lumiport_log(level, PrivateTag(tag).text(), get_log_enable_private() ? message : kRedacted);
}

void lumiport_log_private_vfmt(unsigned level, const char* tag, const char* format,
                               std::va_list arguments) {
    lumiport_log_vfmt(level, PrivateTag(tag).text(), redactedFormat(format), arguments);
}

void lumiport_log_private_fmt(unsigned level, const char* tag, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    lumiport_log_private_vfmt(level, tag, format, arguments);
    va_end(arguments);
}

unsigned get_log_level() {
    return LogSettings::level.load(std::memory_order_relaxed);
}

void set_log_level(unsigned level) {
    const unsigned now = std::min<unsigned>(level, kLogOff);
    const unsigned before = LogSettings::level.exchange(now);
    LogSettings::publishLevel();
    if (now != before && loggerExists(kServiceLogTag))
        lumiport_log_fmt(kLogCritical, kServiceLogTag, "Changing log level from %d to %d",
                         static_cast<int>(before), static_cast<int>(now));
}

unsigned native_log_threshold() {
    return LogSettings::nativeThreshold.load(std::memory_order_relaxed);
}

bool get_log_enable_private() {
    return LogSettings::privateEnabled;
}

void set_log_enable_private(bool enabled) {
    const bool before = LogSettings::privateEnabled;
    if (enabled == before)
        return;
    if (loggerExists(kServiceLogTag))
        lumiport_log_fmt(kLogCritical, kServiceLogTag, "Changing log private from %d to %d",
                         static_cast<int>(before), static_cast<int>(enabled));
    LogSettings::privateEnabled = enabled;
}

void set_disable_file_log(bool disabled) {
    LogSettings::fileDisabled = disabled;
}

std::wstring get_log_directory() {
    return loadText(&LogSettings::resolvedFolder);
}

std::wstring get_log_name() {
    return loadText(&LogSettings::resolvedName);
}

unsigned get_log_max_index() {
    return kLogMaxIndex;
}

void set_log_folder(const wchar_t* folder) {
    storeText(&LogSettings::folder, folder);
}

void set_log_name_prefix(const char* prefix) {
    storeText(&LogSettings::prefix, prefix);
}

void set_log_name_suffix(const char* suffix) {
    storeText(&LogSettings::suffix, suffix);
}

void set_log_header(const char* header) {
    storeText(&LogSettings::header, header);
}

void set_log_directory(const wchar_t* /*folder*/) {}

TracedFunction::TracedFunction(const char* name)
    : mName(name) {
    ORB_LOG_TEXT(kLogDebug, "Entering function %s", mName);
}

TracedFunction::~TracedFunction() {
    ORB_LOG_TEXT(kLogDebug, "Leaving function %s", mName);
}

} // namespace orbelantine
