#pragma once

#include <poll.h>

namespace orbelantine::bridge {

/// Something else that the bridge's loop serves.
class PollSource {
  public:
    virtual ~PollSource() = default;

    /// What to wait for; asked before each wait.
    [[nodiscard]] virtual pollfd wanted() = 0;
    /// The longest wait in milliseconds, -1 for any.
    [[nodiscard]] virtual int timeout() = 0;
    /// Once after each wait.
    virtual void process() = 0;
};

} // namespace orbelantine::bridge
