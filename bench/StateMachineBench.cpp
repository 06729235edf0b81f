#include "bench/AllocationCounter.h"
#include "core/common/run/StateMachine.h"

#include <benchmark/benchmark.h>
#include <boost/asio/executor_work_guard.hpp>

#include <optional>
#include <string>
#include <thread>

namespace orbelantine {
namespace {

/// What the worker may fall behind by, in events.
constexpr int kBurst = 10000;

/// Of the size of a mouse button's.
class Clicks {
  public:
    virtual ~Clicks() = default;
    virtual void click(bool down, int x, int y, unsigned id, bool reconnect) = 0;
    [[nodiscard]] virtual std::string getName() const = 0;
};

class Clicker final : public StateMachine<Clicker, Clicks> {
  public:
    class Counting final : public State {
      public:
        using State::State;

        void click(bool /*down*/, int x, int /*y*/, unsigned /*id*/, bool /*reconnect*/) override {
            benchmark::DoNotOptimize(mSum += x);
        }

        [[nodiscard]] std::string getName() const override { return "Counting"; }

      private:
        int mSum = 0;
    };

    Clicker() {
        postAndWait([this](const auto&) { changeState<Counting>(); });
    }

    void click(bool down, int x, int y, unsigned id, bool reconnect) override {
        postEvent(&Clicks::click, down, x, y, id, reconnect);
    }

    [[nodiscard]] std::string getName() const override { return "Clicker"; }

    boost::shared_ptr<State> current() {
        return postAndWait([](const auto& now) { return now; });
    }
};

/// Its allocations are those of both threads, without those of the wait at the end of a burst.
void postOurs(benchmark::State& state) {
    Clicker machine;
    std::optional<bench::AllocationCounter> onWorker;
    machine.postAndWait([&](const auto&) { onWorker.emplace(); });
    const bench::AllocationCounter onPoster;
    std::uint64_t waiting = 0;
    while (state.KeepRunningBatch(kBurst)) {
        for (int i = 0; i < kBurst; ++i)
            machine.click(true, i, 2, 3, false);
        const bench::AllocationCounter inWait;
        machine.postAndWait([](const auto&) {});
        waiting += inWait.count();
    }
    const auto events = static_cast<double>(state.iterations());
    const auto posted = onPoster.count() - waiting;
    const auto run = machine.postAndWait([&](const auto&) { return onWorker->count(); });
    state.counters["allocations"] = static_cast<double>(posted + run) / events;
}

/// The same call with the same arguments, to a target that is known when it is posted.
boost::function<void()> bareClosure(Clicks& target, bool down, int x, int y, unsigned id,
                                    bool reconnect) {
    return [click = &Clicks::click, &target, down, x, y, id, reconnect] {
        (target.*click)(down, x, y, id, reconnect);
    };
}

/// The queue and a thread alone.
void postBare(benchmark::State& state) {
    Clicker machine;
    const auto target = machine.current();
    boost::asio::io_service ioService;
    auto work = boost::asio::make_work_guard(ioService);
    std::thread worker([&] { ioService.run(); });
    while (state.KeepRunningBatch(kBurst)) {
        for (int i = 0; i < kBurst; ++i)
            ioService.post(bareClosure(*target, true, i, 2, 3, false));
        std::promise<void> done;
        ioService.post([&] { done.set_value(); });
        done.get_future().wait();
    }
    work.reset();
    worker.join();
}

BENCHMARK(postOurs)->Name("BM_PostEvent/ours")->Iterations(10000000)->Repetitions(3)->UseRealTime();
BENCHMARK(postBare)->Name("BM_PostEvent/bare")->Iterations(10000000)->Repetitions(3)->UseRealTime();

} // namespace
} // namespace orbelantine
