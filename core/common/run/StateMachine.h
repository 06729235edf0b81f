#pragma once

#include "core/common/log/Log.h"
#include "core/common/run/Clock.h"
#include "core/common/run/IDelayTimer.h"
#include "core/common/run/WorkerThread.h"

#include <boost/asio/io_service.hpp>
#include <boost/asio/post.hpp>
#include <boost/function.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <algorithm>
#include <atomic>
#include <cassert>
#include <chrono>
#include <future>
#include <list>
#include <memory>
#include <thread>
#include <type_traits>
#include <utility>

namespace orbelantine {

/// The body of a machine's worker: runs the queue until it is stopped. What an event throws ends
/// the process.
void runStateMachine(boost::asio::io_context& ioService) noexcept;

/// A state machine with a worker of its own. `StateT` declares the events as virtual operations and
/// a getName; `Owner` derives from this class and overrides each event with a forwarder, such as
///     void pair(Peer peer) override { postEvent(&StateT::pair, peer); }
/// A queued event reaches the state that is current when its turn comes. No event is deferred, and
/// a transition neither drops nor reorders any.
///
/// Any thread may call post, postEvent, enqueue and postAndWait, until the destructor has joined
/// the worker; everything else, and all that the states own, belongs to the worker. An Owner is
/// brought to a state of rest before it is destroyed, since the worker runs until this class's
/// destructor.
template <class Owner, class StateT, class DelayUnit = std::chrono::milliseconds>
class StateMachine : public StateT {
  public:
    /// A state: made by the transition to it, dropped by the next one. A derived state inherits the
    /// constructor, names itself and overrides the events that it takes.
    class State : public StateT {
      public:
        explicit State(Owner& owner)
            : mOwner(&owner) {}

        State(const State&) = delete;
        State& operator=(const State&) = delete;

        virtual void onEnter() {}

        virtual void onExit() {}

        [[nodiscard]] virtual Owner& owner() const { return *mOwner; }

      private:
        Owner* mOwner;
    };

    using Event = boost::function<void(boost::shared_ptr<State>)>;

    /// Starts the worker, without a state. Throws std::system_error if there can be no thread.
    explicit StateMachine(IClock& clock = IClock::system());
    /// Events in the queue are dropped, and the last state goes without onExit. On the worker
    /// itself this ends the process.
    ~StateMachine() override;
    StateMachine(const StateMachine&) = delete;
    StateMachine& operator=(const StateMachine&) = delete;

    /// Queues `event`, which gets the state at its turn: null before the first transition.
    void post(Event event);
    /// Runs `task` on the worker, as an event, and returns its result. Not from the worker. Throws
    /// std::future_error if the machine stops first.
    template <class Task>
    auto postAndWait(Task task);
    /// Queues `event` for when `delay` has passed, whatever the state is then. A cancelled timer's
    /// event doesn't run.
    boost::shared_ptr<IDelayTimer> postDelayed(Event event, DelayUnit delay);
    /// Makes the next state and leaves the current one for it. May be called from onEnter.
    template <class NextState>
    void changeState();

    /// The time that delays are measured by.
    [[nodiscard]] IClock& clock() const { return mClock; }

  protected:
    /// Posts an operation of StateT with copies of its arguments; its result is dropped. An event
    /// before the first transition is, too.
    template <class Result, class Declaring, class... Arguments>
    void postEvent(Result (Declaring::*event)(Arguments...),
                   std::type_identity_t<Arguments>... arguments);
    /// Queues work that dropEvents takes back, as it does with postEvent's.
    template <class Work>
    void enqueue(Work work);

    /// Any thread: what enqueue and postEvent have queued, and will queue, no longer runs.
    void dropEvents() { mDropping = true; }

    [[nodiscard]] bool onWorker() const { return std::this_thread::get_id() == mWorker; }

    boost::asio::io_service ioService;
    boost::shared_ptr<State> state;
    std::thread thread;
    /// Started and not fired; cancelled ones stay.
    std::list<boost::shared_ptr<IDelayTimer>> pendingTimers;

  private:
    void handleTimer(const boost::system::error_code& ec, const Event& event,
                     const boost::shared_ptr<IDelayTimer>& timer);

    /// Runs an event, unless the machine is being destroyed: Windows' queue hands out what it holds
    /// even when it is stopped.
    void dispatch(const Event& event) {
        if (!mStopping)
            event(state);
    }

    IClock& mClock;
    // Set before the first event.
    std::thread::id mWorker;
    std::atomic<bool> mDropping = false;
    std::atomic<bool> mStopping = false;
};

template <class Owner, class StateT, class DelayUnit>
StateMachine<Owner, StateT, DelayUnit>::StateMachine(IClock& clock)
    : mClock(clock) {
    ORB_TRACED();
    thread = startWorkerThread([this] { runStateMachine(ioService); });
    mWorker = thread.get_id();
}

template <class Owner, class StateT, class DelayUnit>
StateMachine<Owner, StateT, DelayUnit>::~StateMachine() {
    {
        ORB_TRACED();
        mStopping = true;
        ioService.stop();
        thread.join();
    }
    pendingTimers.clear();
    state.reset();
}

template <class Owner, class StateT, class DelayUnit>
void StateMachine<Owner, StateT, DelayUnit>::post(Event event) {
    boost::asio::post(ioService, [this, event = std::move(event)] { dispatch(event); });
}

template <class Owner, class StateT, class DelayUnit>
template <class Result, class Declaring, class... Arguments>
void StateMachine<Owner, StateT, DelayUnit>::postEvent(
    Result (Declaring::*event)(Arguments...), std::type_identity_t<Arguments>... arguments) {
    static_assert(std::is_base_of_v<Declaring, StateT>);
    enqueue([event, ... copies = std::forward<Arguments>(arguments)](
                const boost::shared_ptr<State>& current) {
        if (current)
            (current.get()->*event)(copies...);
    });
}

template <class Owner, class StateT, class DelayUnit>
template <class Work>
void StateMachine<Owner, StateT, DelayUnit>::enqueue(Work work) {
    post([this, work = std::move(work)](const boost::shared_ptr<State>& current) {
        if (!mDropping)
            work(current);
    });
}

template <class Owner, class StateT, class DelayUnit>
template <class Task>
auto StateMachine<Owner, StateT, DelayUnit>::postAndWait(Task task) {
    using Result = std::invoke_result_t<Task&, const boost::shared_ptr<State>&>;
    assert(!onWorker());
    auto promise = std::make_shared<std::promise<Result>>();
    auto result = promise->get_future();
    post([promise = std::move(promise),
          task = std::move(task)](const boost::shared_ptr<State>& current) mutable {
        if constexpr (std::is_void_v<Result>) {
            task(current);
            promise->set_value();
        } else {
            promise->set_value(task(current));
        }
    });
    return result.get();
}

template <class Owner, class StateT, class DelayUnit>
boost::shared_ptr<IDelayTimer>
StateMachine<Owner, StateT, DelayUnit>::postDelayed(Event event, DelayUnit delay) {
    assert(onWorker());
    auto timer = mClock.makeTimer(ioService, laterBy(mClock.now(), delay));
    pendingTimers.push_back(timer);
    timer->asyncWait([this, event = std::move(event), timer](const boost::system::error_code& ec) {
        handleTimer(ec, event, timer);
    });
    return timer;
}

template <class Owner, class StateT, class DelayUnit>
void StateMachine<Owner, StateT, DelayUnit>::handleTimer(
    const boost::system::error_code& ec, const Event& event,
    const boost::shared_ptr<IDelayTimer>& timer) {
    if (ec) {
        ORB_LOG(kLogError, "%s: error %d = %s", ec.value(), ec.message().c_str());
        return;
    }
    if (std::find(pendingTimers.begin(), pendingTimers.end(), timer) == pendingTimers.end()) {
        ORB_LOG(kLogError, "%s: error timer not found in pending timers");
        return;
    }
    dispatch(event);
    pendingTimers.remove(timer);
}

template <class Owner, class StateT, class DelayUnit>
template <class NextState>
void StateMachine<Owner, StateT, DelayUnit>::changeState() {
    assert(onWorker());
    // Held here: a state whose onEnter goes on to the next one lives until that onEnter returns.
    const auto next = boost::make_shared<NextState>(static_cast<Owner&>(*this));
    if (state)
        state->onExit();
    state = next;
    next->onEnter();
}

} // namespace orbelantine
