#pragma once

#include <sys/types.h>

#include <string>

namespace orbelantine::stack {

/// A dbus-daemon of its own, for whoever knows its address.
class PrivateBus {
  public:
    /// Returns once it listens. Throws std::system_error if its folder or pipe can't be made.
    PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus();

    /// False where dbus-daemon isn't installed, and once it is stopped.
    [[nodiscard]] bool runs() const { return mDaemon > 0; }

    [[nodiscard]] std::string address() const { return "unix:path=" + mFolder + "/bus"; }

    /// Every connection on it breaks.
    void stop();

  private:
    void start();

    std::string mFolder;
    pid_t mDaemon = -1;
};

} // namespace orbelantine::stack
