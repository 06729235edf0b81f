#pragma once

#include "core/common/log/Log.h"

#include <atomic>
#include <mutex>
#include <string>

namespace orbelantine {

/// The logging service's settings, one set for the process. It is never destroyed: any thread may
/// log while the process ends.
struct LogSettings {
    static LogSettings& instance() {
        static LogSettings& settings = *new LogSettings;
        return settings;
    }

    static inline constinit std::atomic<unsigned> level{kLogOff};
    /// The level as native code's own macros see it: 0 until the first of its lines, which makes
    /// the logger and the file whatever its level is.
    static inline constinit std::atomic<unsigned> nativeThreshold{0};
    static inline constinit std::atomic<bool> nativeLogStarted{false};
    static inline constinit std::atomic<bool> privateEnabled{false};
    static inline constinit std::atomic<bool> fileDisabled{false};

    /// Lets the threshold follow the level, once native code has logged. The last of several
    /// threads to store it has seen the last level.
    static void publishLevel() {
        if (!nativeLogStarted)
            return;
        unsigned seen = 0;
        do {
            seen = level;
            nativeThreshold = seen;
        } while (seen != level);
    }

    /// Guards the texts below.
    std::mutex mutex;
    std::wstring folder;
    std::string prefix;
    std::string suffix;
    std::string header;
    std::wstring resolvedFolder;
    std::wstring resolvedName;
};

} // namespace orbelantine
