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
    static inline constinit std::atomic<bool> privateEnabled{false};
    static inline constinit std::atomic<bool> fileDisabled{false};

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
