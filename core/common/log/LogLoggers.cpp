#include "core/common/log/LogLoggers.h"

#include "core/common/log/DebuggerSink.h"
#include "core/common/log/LogFileSink.h"
#include "core/common/log/LogPaths.h"
#include "core/common/log/LogSettings.h"
#include "core/common/log/Spdlog.h"
#include "core/common/run/CallGate.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace orbelantine {

namespace {

constexpr const char* kPattern = "[%d/%m/%C %H:%M:%S.%e | tid:%t | %n | %l]: %v";
constexpr const char* kLineEnd = "\r\n";

// How long the end of the process waits for threads that are still logging.
constexpr std::chrono::milliseconds kStopBound{1000};

using Logger = std::shared_ptr<spdlog::logger>;

/// Owns the lock unless another thread keeps it beyond `bound`. A timed mutex would do, if the
/// thread sanitiser saw its locking.
template <class Mutex>
std::unique_lock<Mutex> lockWithin(Mutex& mutex, std::chrono::milliseconds bound) {
    const auto end = std::chrono::steady_clock::now() + bound;
    std::unique_lock lock(mutex, std::try_to_lock);
    while (!lock.owns_lock() && std::chrono::steady_clock::now() < end) {
        std::this_thread::yield();
        (void)lock.try_lock();
    }
    return lock;
}

/// The loggers, also entered in spdlog's registry. That one is a static, destroyed while threads
/// may still log, so every message is looked up here.
class Registry {
  public:
    Logger find(std::string_view tag) {
        const std::lock_guard lock(mMutex);
        const auto found = mLoggers.find(tag);
        return found != mLoggers.end() ? found->second : nullptr;
    }

    bool isShut() {
        const std::lock_guard lock(mMutex);
        return mShut;
    }

    /// False once shut.
    bool add(const Logger& logger) {
        const std::lock_guard lock(mMutex);
        if (mShut)
            return false;
        spdlog::register_logger(logger);
        mLoggers.emplace(logger->name(), logger);
        return true;
    }

    /// Lets the loggers go, for good, and hands out the service's own. False if the lock can't be
    /// had in time.
    bool shut(std::chrono::milliseconds bound, Logger& service) {
        const auto lock = lockWithin(mMutex, bound);
        if (!lock.owns_lock())
            return false;
        mShut = true;
        const auto found = mLoggers.find(kServiceLogTag);
        service = found != mLoggers.end() ? found->second : nullptr;
        mLoggers.clear();
        spdlog::drop_all();
        return true;
    }

  private:
    std::mutex mMutex;
    bool mShut = false;
    std::map<std::string, Logger, std::less<>> mLoggers;
};

/// What all loggers share. Never destroyed: threads may log while the process ends.
struct LoggerState {
    static LoggerState& instance() {
        static LoggerState& state = *new LoggerState;
        return state;
    }

    Registry registry;
    // Around each write to the sinks.
    CallGate writing;
    // Held through the making of a logger, which logs and so makes another one. Guards what
    // follows.
    std::recursive_mutex making;
    bool sinksBuilt = false;
    std::vector<spdlog::sink_ptr> sinks;
    bool firstLogger = true;
};

/// Reaches a logger lazily, at its next message.
void takeProcessLevel(spdlog::logger& logger) {
    const auto level = static_cast<spdlog::level::level_enum>(LogSettings::level.load());
    if (logger.level() != level)
        logger.set_level(level);
}

LogPathWishes wishes() {
    LogSettings& settings = LogSettings::instance();
    const std::lock_guard lock(settings.mutex);
    return {settings.folder, settings.prefix, settings.suffix, LogSettings::level};
}

/// The file's path, for a new logger; it also becomes what the host is told.
std::filesystem::path resolvePath() {
    LogPathsApi& api = LogPathsApi::system();
    const LogPathWishes wished = wishes();
    const std::wstring folder = resolveLogFolder(api, wished);
    const std::wstring name = resolveLogName(api, wished);

    LogSettings& settings = LogSettings::instance();
    const std::lock_guard lock(settings.mutex);
    settings.resolvedFolder = folder;
    settings.resolvedName = name;
    return toPath(folder + name);
}

/// Throws where the file can't be opened, which is also told where somebody may read it.
spdlog::sink_ptr openFile(const std::filesystem::path& path) {
    try {
        return std::make_shared<LogFileSink>(path.native());
    } catch (const spdlog::spdlog_ex& failure) {
        (void)std::fprintf(stderr, "orbelantine: nothing is logged to a file: %s\n",
                           failure.what());
        throw;
    }
}

/// Throws where the file can't be opened; the sinks are then those made before.
void buildSinks(LoggerState& state, const std::filesystem::path& path) {
    state.sinksBuilt = true;
    if (auto debugger = debuggerSink())
        state.sinks.push_back(std::move(debugger));
    if (!LogSettings::fileDisabled)
        state.sinks.push_back(openFile(path));
}

void stopLogging() {
    LoggerState& state = LoggerState::instance();
    Logger logger;
    const bool registryIsShut = state.registry.shut(kStopBound, logger);
    const auto lock = lockWithin(state.making, kStopBound);
    // A thread that was ended within a call may have left a lock behind: no sink is touched then.
    if (!registryIsShut || !lock.owns_lock() || !state.writing.shut(kStopBound))
        return;
    if (logger != nullptr) {
        takeProcessLevel(*logger);
        logger->log(spdlog::level::critical, spdlog::fmt_lib::format("STOPPING INSTANCE pid={:06}",
                                                                     spdlog::details::os::pid()));
    }
    state.sinks.clear();
}

void announceStart(LoggerState& state, const spdlog::logger& logger) {
    if (!state.firstLogger)
        return;
    state.firstLogger = false;
    // Where it can't be registered, the log only ends without its last line.
    (void)std::atexit(stopLogging);
    lumiport_log_fmt(kLogCritical, kServiceLogTag, "STARTING INSTANCE pid=%06d, level = %d",
                     spdlog::details::os::pid(), static_cast<int>(logger.level()));
}

Logger makeLogger(const std::string& tag) {
    LoggerState& state = LoggerState::instance();
    const std::lock_guard lock(state.making);
    if (state.registry.isShut())
        return nullptr;
    if (Logger existing = state.registry.find(tag))
        return existing;

    const std::filesystem::path path = resolvePath();
    if (!state.sinksBuilt)
        buildSinks(state, path);
    auto logger = std::make_shared<spdlog::logger>(tag, state.sinks.begin(), state.sinks.end());
    takeProcessLevel(*logger);
    logger->set_formatter(std::make_unique<spdlog::pattern_formatter>(
        kPattern, spdlog::pattern_time_type::local, kLineEnd));
    if (!state.registry.add(logger))
        return nullptr;
    announceStart(state, *logger);
    return logger;
}

/// Null if the logger can't be made; the message is lost then. Kept apart from the look-up, which
/// every message passes.
[[gnu::noinline, gnu::cold]] Logger madeLogger(const char* tag) {
    try {
        return makeLogger(tag);
    } catch (const std::exception&) {
        return nullptr;
    }
}

Logger loggerOf(const char* tag) {
    if (Logger existing = LoggerState::instance().registry.find(tag))
        return existing;
    return madeLogger(tag);
}

void startNativeLog() {
    LogSettings::nativeLogStarted = true;
    LogSettings::publishLevel();
}

} // namespace

LogMessage::LogMessage(unsigned level, const char* tag)
    : mLevel(std::min<unsigned>(level, kLogOff))
    , mLogger(loggerOf(tag)) {
    if (!LogSettings::nativeLogStarted && std::strcmp(tag, kNativeLogTag) == 0)
        startNativeLog();
    if (mLogger == nullptr)
        return;
    takeProcessLevel(*mLogger);
    const auto threshold = static_cast<unsigned>(mLogger->level());
    mWanted = mLevel >= threshold && threshold != kLogOff;
}

void LogMessage::write(std::string_view text) const {
    const CallGate::Call call(LoggerState::instance().writing);
    if (call.inside())
        mLogger->log(static_cast<spdlog::level::level_enum>(mLevel),
                     spdlog::string_view_t(text.data(), text.size()));
}

bool loggerExists(const char* tag) {
    return LoggerState::instance().registry.find(tag) != nullptr;
}

} // namespace orbelantine
