#pragma once

#include <boost/asio/io_service.hpp>
#include <boost/asio/post.hpp>
#include <boost/smart_ptr/enable_shared_from_this.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <utility>

namespace orbelantine {

/// Where the threads of input sources hand events to a worker and wait for each one, so that events
/// keep their order. Once it is closed nobody waits there, and the worker may go. Held by a shared
/// pointer; any thread may call.
class InputGate : public boost::enable_shared_from_this<InputGate> {
  public:
    enum class Outcome { Passed, TimedOut, Closed };

    /// `ioService` has one worker, and lives until the gate is closed.
    InputGate(boost::asio::io_service& ioService, std::chrono::milliseconds bound);

    /// Runs `event` on the worker, with this gate, and waits for its end or the closing of the
    /// gate, up to the bound; it stays posted after that. A closed gate doesn't take it.
    template <class Event>
    Outcome pass(Event event);
    /// For good. Whoever waits goes on at once.
    void close();

  private:
    using Ticket = std::uint64_t;

    /// Ends an event, also one that throws.
    struct End {
        InputGate& gate;
        Ticket ticket;

        ~End() { gate.finish(ticket); }
    };

    Outcome wait(std::unique_lock<std::mutex>& lock, Ticket ticket);
    void finish(Ticket ticket);

    boost::asio::io_service& mIoService;
    const std::chrono::milliseconds mBound;
    std::mutex mMutex;
    std::condition_variable mChanged;
    bool mClosed = false;
    // The worker takes the events in the order of their tickets.
    Ticket mPosted = 0;
    Ticket mFinished = 0;
};

template <class Event>
InputGate::Outcome InputGate::pass(Event event) {
    std::unique_lock lock(mMutex);
    if (mClosed)
        return Outcome::Closed;
    const Ticket ticket = ++mPosted;
    boost::asio::post(mIoService,
                      [self = shared_from_this(), ticket, event = std::move(event)]() mutable {
                          const End end{*self, ticket};
                          event(*self);
                      });
    return wait(lock, ticket);
}

} // namespace orbelantine
