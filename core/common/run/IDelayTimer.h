#pragma once

#include <functional>

namespace boost::system {
class error_code;
} // namespace boost::system

namespace orbelantine {

/// One wait for a moment of a clock, as IClock::makeTimer makes it. Used on the thread that runs
/// its io_service, and released before that is destroyed.
class IDelayTimer {
  public:
    using Handler = std::function<void(const boost::system::error_code&)>;

    virtual ~IDelayTimer() = default;
    /// Once. The handler is called from the queue, never from here: with success when the moment
    /// has come, with boost::asio::error::operation_aborted once the timer is cancelled.
    virtual void asyncWait(Handler handler) = 0;
    /// Also takes back a success that is in the queue; nothing happens after the handler was
    /// called.
    virtual void cancel() = 0;
};

} // namespace orbelantine
