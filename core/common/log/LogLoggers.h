#pragma once

#include <memory>
#include <string_view>

namespace spdlog {
class logger;
}

namespace orbelantine {

/// The logger of the service's own lines.
inline constexpr const char* kServiceLogTag = "logger";

/// Rotated files kept beside the current one.
inline constexpr unsigned kLogMaxIndex = 1;

/// One message on its way to the logger of its tag, which is made if missing. Without a logger, and
/// once the service has stopped, no message is wanted.
class LogMessage {
  public:
    LogMessage(unsigned level, const char* tag);

    [[nodiscard]] bool wanted() const { return mWanted; }

    /// Only what is wanted is written.
    void write(std::string_view text) const;

  private:
    unsigned mLevel;
    std::shared_ptr<spdlog::logger> mLogger;
    bool mWanted = false;
};

[[nodiscard]] bool loggerExists(const char* tag);

} // namespace orbelantine
