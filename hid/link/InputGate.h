#pragma once

#include "core/common/run/IoThread.h"

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

    InputGate(const IoThread& worker, std::chrono::milliseconds bound);

    /// Runs `event` on the worker, with this gate, and waits for its end or the closing of the
    /// gate, up to the bound; it stays posted after that. A closed gate doesn't take it; a worker
    /// that has ended drops it.
    template <class Event>
    Outcome pass(Event event);
    /// For good. Whoever waits goes on at once.
    void close();

  private:
    using Ticket = std::uint64_t;

    /// An event on its way, which ends with this: also one that throws or is dropped.
    class Passing {
      public:
        Passing(boost::shared_ptr<InputGate> gate, Ticket ticket)
            : mGate(std::move(gate))
            , mTicket(ticket) {}

        ~Passing() {
            if (mGate)
                mGate->finish(mTicket);
        }

        Passing(Passing&&) = default;
        Passing& operator=(Passing&&) = delete;

        [[nodiscard]] const InputGate& gate() const { return *mGate; }

      private:
        boost::shared_ptr<InputGate> mGate;
        Ticket mTicket;
    };

    Outcome wait(std::unique_lock<std::mutex>& lock, Ticket ticket, IoThread::Queue& worker);
    void finish(Ticket ticket);

    const std::chrono::milliseconds mBound;
    std::mutex mMutex;
    std::condition_variable mChanged;
    // Null once closed: the events in it hold this gate.
    boost::shared_ptr<IoThread::Queue> mWorker;
    // The worker takes the events in the order of their tickets.
    Ticket mPosted = 0;
    Ticket mFinished = 0;
};

template <class Event>
InputGate::Outcome InputGate::pass(Event event) {
    // Let go last, without the lock: it may drop events, which end.
    boost::shared_ptr<IoThread::Queue> worker;
    std::unique_lock lock(mMutex);
    worker = mWorker;
    if (!worker)
        return Outcome::Closed;
    const Ticket ticket = ++mPosted;
    worker->enqueue([passing = Passing(shared_from_this(), ticket),
                     event = std::move(event)]() mutable { event(passing.gate()); });
    return wait(lock, ticket, *worker);
}

} // namespace orbelantine
