#include "core/common/run/StateMachine.h"

#include "core/common/run/StateEvent.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/HandClock.h"

#include <boost/asio/error.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace orbelantine {

class Travel {
  public:
    virtual ~Travel() = default;
    virtual bool step(int length);
    virtual void carry(const std::string& load, const boost::shared_ptr<int>& owned);
    [[nodiscard]] virtual std::string getName() const = 0;

  private:
    void onNotProcessed(const char* event) const {
        logNotProcessed(kEventNotProcessed, ORB_FUNCTION_NAME, event, *this);
    }
};

bool Travel::step(int /*length*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
    return false;
}

void Travel::carry(const std::string& /*load*/, const boost::shared_ptr<int>& /*owned*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

namespace {

using namespace std::chrono_literals;
using test::CapturedLog;
using Names = std::vector<std::string>;

class Traveller : public StateMachine<Traveller, Travel> {
  public:
    using StateMachine::ioService;
    using StateMachine::pendingTimers;
    using StateMachine::StateMachine;

    bool step(int length) override {
        postEvent(&Travel::step, length);
        return true;
    }

    void carry(const std::string& load, const boost::shared_ptr<int>& owned) override {
        postEvent(&Travel::carry, load, owned);
    }

    [[nodiscard]] std::string getName() const override { return "Traveller"; }

    template <class NextState>
    void enter() {
        post([this](const auto&) { changeState<NextState>(); });
    }

    /// What has happened, once all that was posted so far has run.
    Names history() {
        return postAndWait([this](const auto&) { return *notes; });
    }

    std::size_t pending() {
        return postAndWait([this](const auto&) { return pendingTimers.size(); });
    }

    void note(const std::string& what) { notes->push_back(what); }

    const std::shared_ptr<Names> notes = std::make_shared<Names>();
};

class Place : public Traveller::State {
  public:
    using State::State;

    void onEnter() override { owner().note("enter " + getName()); }

    void onExit() override { owner().note("exit " + getName()); }
};

class Home final : public Place {
  public:
    using Place::Place;

    [[nodiscard]] std::string getName() const override { return "Home"; }

    bool step(int length) override {
        owner().note("Home step " + std::to_string(length));
        return true;
    }

    void carry(const std::string& load, const boost::shared_ptr<int>& owned) override {
        owner().note("Home " + load + " " + std::to_string(*owned));
    }
};

class Abroad final : public Place {
  public:
    using Place::Place;

    [[nodiscard]] std::string getName() const override { return "Abroad"; }
};

/// On its way through, to Home.
class Border final : public Place {
  public:
    using Place::Place;

    [[nodiscard]] std::string getName() const override { return "Border"; }

    void onEnter() override {
        Place::onEnter();
        owner().step(1);
        owner().changeState<Home>();
        owner().note("still " + getName());
        owner().step(3);
    }

    void onExit() override {
        Place::onExit();
        owner().step(2);
    }
};

class TravellerTest : public ::testing::Test {
  protected:
    Traveller::Event noteStep(int length) {
        return [length](const auto& state) { state->step(length); };
    }

    /// On the worker.
    boost::shared_ptr<IDelayTimer> delay(int length, std::chrono::milliseconds time) {
        return mTraveller->postAndWait(
            [&](const auto&) { return mTraveller->postDelayed(noteStep(length), time); });
    }

    test::HandClock mClock;
    CapturedLog mLog{kLogError};
    std::optional<Traveller> mTraveller{std::in_place, mClock};
};

TEST_F(TravellerTest, EventReachesTheStateOfItsTurnAndANestedTransitionLeavesTheOneBeingEntered) {
    mTraveller->step(1);
    mTraveller->enter<Home>();
    mTraveller->step(2);
    mTraveller->enter<Abroad>();
    mTraveller->step(3);
    mTraveller->enter<Border>();
    (void)mTraveller->history();
    EXPECT_EQ(mTraveller->history(),
              (Names{"enter Home", "Home step 2", "exit Home", "enter Abroad", "exit Abroad",
                     "enter Border", "exit Border", "enter Home", "still Border", "Home step 1",
                     "Home step 2", "Home step 3"}));
    const auto owned = boost::make_shared<int>(7);
    {
        std::string load = "map";
        mTraveller->carry(load, owned);
        load = "none";
    }
    EXPECT_EQ(mTraveller->history().back(), "Home map 7") << "the arguments are the event's own";
    EXPECT_EQ(owned.use_count(), 1);
}

TEST_F(TravellerTest, EventWithoutOverrideIsLoggedAndChangesNothing) {
    mTraveller->enter<Abroad>();
    (void)mTraveller->history();
    set_log_level(kLogDebug);
    mTraveller->step(1);
    mTraveller->carry("map", {});
    EXPECT_EQ(mTraveller->history(), Names{"enter Abroad"});
    const std::string start =
        "debug orbelantine::Travel::onNotProcessed: Event orbelantine::Travel::";
    EXPECT_EQ(mLog.told(), (Names{start + "step not processed in Abroad",
                                  start + "carry not processed in Abroad"}));
    logNotProcessed(kEventNotProcessedCall, "f", "g", *mTraveller);
    EXPECT_EQ(mLog.told().at(0), "debug f() Event g not processed in Traveller");
}

TEST_F(TravellerTest, DelayedEventGoesToTheStateOfItsTime) {
    mTraveller->enter<Abroad>();
    (void)delay(3, 30ms);
    (void)delay(2, 20ms);
    mTraveller->enter<Home>();
    mClock.advance(19ms);
    EXPECT_EQ(mTraveller->history().back(), "enter Home");
    mClock.advance(1ms);
    EXPECT_EQ(mTraveller->history().back(), "Home step 2");
    EXPECT_EQ(mTraveller->pending(), 1u);
    mClock.advance(1h);
    EXPECT_EQ(mTraveller->history().back(), "Home step 3");
    EXPECT_EQ(mTraveller->pending(), 0u);
}

TEST_F(TravellerTest, TimerThatIsCancelledOrNotPendingIsLoggedAndRunsNothing) {
    mTraveller->enter<Home>();
    const auto cancelled = delay(1, 10ms);
    mTraveller->postAndWait([&](const auto&) { cancelled->cancel(); });
    EXPECT_EQ(mTraveller->pending(), 1u) << "a cancelled one is kept";
    (void)delay(2, 10ms);
    mTraveller->postAndWait([&](const auto&) { mTraveller->pendingTimers.clear(); });
    mClock.advance(10ms);
    EXPECT_EQ(mTraveller->history(), Names{"enter Home"});
    const boost::system::error_code aborted = boost::asio::error::operation_aborted;
    const std::string start = "error orbelantine::StateMachine::handleTimer: error ";
    EXPECT_EQ(mLog.told(),
              (Names{start + std::to_string(aborted.value()) + " = " + aborted.message(),
                     start + "timer not found in pending timers"}));
}

TEST_F(TravellerTest, QueuedAndDelayedEventsGoUnrunWithTheMachine) {
    const auto notes = mTraveller->notes;
    const auto owned = boost::make_shared<int>(0);
    std::promise<void> begun;
    mTraveller->enter<Abroad>();
    // By the base class, whose destructor it is that waits for the worker.
    StateMachine<Traveller, Travel>& machine = *mTraveller;
    mTraveller->post([&, &queue = mTraveller->ioService](const auto&) {
        const auto event = [owned, notes](const auto&) { notes->push_back("event"); };
        machine.postDelayed(event, 1ms);
        machine.post(event);
        begun.set_value();
        while (!queue.stopped())
            std::this_thread::yield();
        machine.post(event);
    });
    begun.get_future().wait();
    mTraveller.reset();
    mClock.advance(1ms);
    EXPECT_EQ(*notes, Names{"enter Abroad"});
    EXPECT_EQ(owned.use_count(), 1);
}

TEST_F(TravellerTest, LifeIsTraced) {
    mTraveller.reset();
    set_log_level(kLogDebug);
    mTraveller.emplace(mClock);
    (void)mTraveller->history();
    mTraveller.reset();
    Names texts = mLog.told();
    // The worker's first line may come before the constructor's last.
    std::sort(texts.begin() + 1, texts.begin() + 3);
    EXPECT_EQ(texts, (Names{"debug Entering function orbelantine::StateMachine::StateMachine",
                            "debug Entering function orbelantine::runStateMachine",
                            "debug Leaving function orbelantine::StateMachine::StateMachine",
                            "debug Entering function orbelantine::StateMachine::~StateMachine",
                            "debug Leaving function orbelantine::runStateMachine",
                            "debug Leaving function orbelantine::StateMachine::~StateMachine"}));
}

} // namespace
} // namespace orbelantine
