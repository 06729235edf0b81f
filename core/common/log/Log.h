#pragma once

#include "core/common/log/FunctionName.h"

#include <cstdarg>
#include <string>

// The formats are those of ISO C on every platform, as vsnprintf here takes them.
#if defined(__clang__)
#define ORB_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define ORB_PRINTF(text, first) __attribute__((format(gnu_printf, text, first)))
#endif

namespace orbelantine {

/// spdlog's numbers. kLogOff is the level of a process that never set one: nothing is written.
enum LogLevel : unsigned {
    kLogTrace = 0,
    kLogDebug = 1,
    kLogInfo = 2,
    kLogWarning = 3,
    kLogError = 4,
    kLogCritical = 5,
    kLogOff = 6,
};

/// The logger name of native code.
inline constexpr const char* kNativeLogTag = "LUMIPORT";

/// The logging service. Any thread may call; nothing throws or reports failure. Loggers and the
/// file are made at the first message, so folder, name and file switch are set before it. A null
/// text is the empty text.
/// @{

/// Logs the text as it stands under the logger `tag`.
void lumiport_log(unsigned level, const char* tag, const char* message);
/// Logs a printf text, cut at 2,047 characters; nothing is formatted below the level.
void lumiport_log_fmt(unsigned level, const char* tag, const char* format, ...) ORB_PRINTF(3, 4);
/// The same with the arguments as a list.
void lumiport_log_vfmt(unsigned level, const char* tag, const char* format, std::va_list arguments)
    ORB_PRINTF(3, 0);
/// Logs under "ALL__" + tag; the text is "[redacted]" unless private entries are enabled.
void lumiport_log_private(unsigned level, const char* tag, const char* message);
/// As lumiport_log_private; a format that begins with "%s()" keeps its first argument.
void lumiport_log_private_fmt(unsigned level, const char* tag, const char* format, ...)
    ORB_PRINTF(3, 4);
void lumiport_log_private_vfmt(unsigned level, const char* tag, const char* format,
                               std::va_list arguments) ORB_PRINTF(3, 0);

[[nodiscard]] unsigned get_log_level();
/// The level from which native code's lines go through the service: 0 before the first of them.
[[nodiscard]] unsigned native_log_threshold();
/// Clamped to kLogOff. Reaches each existing logger at its next message.
void set_log_level(unsigned level);
[[nodiscard]] bool get_log_enable_private();
void set_log_enable_private(bool enabled);
void set_disable_file_log(bool disabled);
/// The folder in use with a trailing separator; empty before the first message.
[[nodiscard]] std::wstring get_log_directory();
/// The file's name without its folder; empty before the first message.
[[nodiscard]] std::wstring get_log_name();
/// Rotated files kept beside the current one.
[[nodiscard]] unsigned get_log_max_index();
void set_log_folder(const wchar_t* folder);
void set_log_name_prefix(const char* prefix);
void set_log_name_suffix(const char* suffix);
/// Stored only.
void set_log_header(const char* header);
/// Accepted and ignored: the folder is set with set_log_folder.
void set_log_directory(const wchar_t* folder);

/// @}

/// Logs that a function is entered and left, at debug level. Made by ORB_TRACED.
class TracedFunction {
  public:
    explicit TracedFunction(const char* name);
    ~TracedFunction();
    TracedFunction(const TracedFunction&) = delete;
    TracedFunction& operator=(const TracedFunction&) = delete;

  private:
    const char* mName;
};

} // namespace orbelantine

/// Native code's line as it stands, under kNativeLogTag. The arguments of a filtered line are not
/// evaluated, but for the first line of the process: it makes the logger and the file.
#define ORB_LOG_TEXT(level, ...)                                                                   \
    do {                                                                                           \
        if ((level) >= ::orbelantine::native_log_threshold())                                      \
            ::orbelantine::lumiport_log_fmt(level, ::orbelantine::kNativeLogTag, __VA_ARGS__);     \
    } while (false)

/// The usual line: `format` begins with "%s()" and gets the qualified name of the function.
#define ORB_LOG(level, format, ...)                                                                \
    ORB_LOG_TEXT(level, format, ORB_FUNCTION_NAME __VA_OPT__(, ) __VA_ARGS__)

#define ORB_TRACED()                                                                               \
    static constexpr auto orbTracedName = ::orbelantine::qualifiedName(__PRETTY_FUNCTION__);       \
    const ::orbelantine::TracedFunction orbTraced(orbTracedName.data())
