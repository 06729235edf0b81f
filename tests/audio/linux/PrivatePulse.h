#pragma once

#include <boost/asio/local/stream_protocol.hpp>
#include <sys/types.h>

#include <string>

namespace orbelantine::test {

/// A sound server of its own, at first without any device, and the one that clients in this process
/// find. It doesn't outlive the process for long.
class PrivatePulse {
  public:
    /// Returns once it listens.
    PrivatePulse();
    ~PrivatePulse();
    PrivatePulse(const PrivatePulse&) = delete;
    PrivatePulse& operator=(const PrivatePulse&) = delete;

    /// False where the machine has none, and once it is stopped.
    [[nodiscard]] bool runs() const { return mDaemon > 0; }

    /// Again, after a stop.
    void start();
    /// Every connection with it breaks.
    void stop();
    /// It lives on and does nothing.
    void freeze() const;
    void thaw() const;

    /// A command of the server's own language, as of `pacmd`; what it answers.
    std::string tell(const std::string& command);

  private:
    std::string readAnswer();

    std::string mFolder;
    pid_t mDaemon = -1;
    boost::asio::local::stream_protocol::iostream mCommands;
};

} // namespace orbelantine::test
