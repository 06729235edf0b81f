#pragma once

#include "tools/virtual_phone/log/Json.h"

#include <chrono>
#include <functional>
#include <iosfwd>

namespace orbelantine::phone {

/// The time since the phone was switched on.
using Now = std::function<std::chrono::milliseconds()>;

/// The time since this call.
[[nodiscard]] Now sinceHere();

/// Writes one JSON object per line, each with its time first, and flushes after each.
class EventLog {
  public:
    /// `out` may be null, for a phone that keeps no log; it outlives the log.
    EventLog(std::ostream* out, Now now);

    void write(const JsonObject& event);

  private:
    std::ostream* mOut;
    Now mNow;
};

} // namespace orbelantine::phone
