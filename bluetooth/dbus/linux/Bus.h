#pragma once

#include <poll.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>

namespace sdbus {
class IConnection;
class IProxy;
} // namespace sdbus

namespace orbelantine::dbus {

/// How long a call waits for its answer, unless it says otherwise.
inline constexpr std::chrono::seconds kLongestCall{5};

/// A connection to D-Bus without a thread of its own: the one that serves it makes every call, and
/// handlers run in process() alone.
class Bus {
  public:
    enum class State { Idle, More, Lost };

    static constexpr std::uint64_t kNoTimeout = std::numeric_limits<std::uint64_t>::max();

    /// To the system bus if `address` is empty. Throws sdbus::Error.
    explicit Bus(const std::string& address);
    ~Bus();
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    [[nodiscard]] sdbus::IConnection& connection() { return *mConnection; }

    /// An object of BlueZ, ready for calls. It goes before this, and not in a handler of its own.
    [[nodiscard]] std::unique_ptr<sdbus::IProxy> blueZ(const std::string& path);

    /// Calls `handler` with the new owner of a name, empty for none, whenever it changes. Once.
    /// Throws sdbus::Error.
    void watchOwner(const std::string& name, std::function<void(const std::string&)> handler);

    /// Handles up to `most` messages that have come in; not from a handler. A loss is for good.
    State process(unsigned most = std::numeric_limits<unsigned>::max());

    [[nodiscard]] bool lost() const { return mLost; }

    /// What to wait for once process() was Idle; no descriptor once the bus is lost. Messages that
    /// came in while a call waited for its answer don't show here: they want process().
    [[nodiscard]] pollfd wanted() const;
    /// For poll(): -1 for any time.
    [[nodiscard]] int pollTimeout() const;
    /// In microseconds of the system's monotonic clock.
    [[nodiscard]] std::uint64_t dueAt() const;

  private:
    std::unique_ptr<sdbus::IConnection> mConnection;
    std::unique_ptr<sdbus::IProxy> mDaemon;
    bool mLost = false;
};

} // namespace orbelantine::dbus
