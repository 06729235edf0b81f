#include "hid/link/BluetoothHIDClientManager.h"

#include "core/common/errors/ErrorAreas.h"
#include "tests/hid/HidChainFixture.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <optional>
#include <thread>

namespace orbelantine::test {
namespace {

using namespace std::chrono_literals;

constexpr const char* kAddress = "01:23:45:67:89:AB";
const std::string kConnect = std::string("connect ") + kAddress;
const std::string kAdd =
    "sdp add OrbelantineHIDDevice|Provides HID, Keyboard and mouse|"
    "Orbelantine|64|"
    "05010902A10185010901A1000509190129031500250175019503810275059501810105010930"
    "093109381581257F750895028106C0C0"
    "05010906A1018502A100050719E029E715002501750195088102950875081500256505071900"
    "29658100C0C0";
const error_code kRefused(111, boost::system::generic_category());
const std::string kManager = "orbelantine::BluetoothHIDClientManager::";
const std::string kDiscarded =
    "warning handleInputProxy() Got an input event while stopping, discarding this event";
const std::string kLate = "error handleInputProxy() waited too much, returning";

error_code hidCode(int value) {
    return HidErrors::getErrorCode(value);
}

class BluetoothHidClientManager : public testing::Test {
  protected:
    void makeManager(std::chrono::milliseconds inputWait = 1min) {
        mManager.emplace(KVStore(), mClock, inputWait);
        mManager->onConnected.connect([this] { mChain.script.journal.note("onConnected"); });
        mManager->onDisconnected.connect([this](error_code ec) {
            mChain.script.journal.note("onDisconnected " + std::to_string(ec.value()));
        });
    }

    error_code run(void (BluetoothHIDClientManager::*operation)(Completion)) {
        return await([&](const auto& done) { ((*mManager).*operation)(done); });
    }

    error_code init() { return run(&BluetoothHIDClientManager::init); }

    error_code stop() { return run(&BluetoothHIDClientManager::stop); }

    error_code cleanup() { return run(&BluetoothHIDClientManager::cleanup); }

    error_code resume() { return run(&BluetoothHIDClientManager::resumeConnection); }

    error_code start() {
        return await([this](const auto& done) { mManager->start(kAddress, done); });
    }

    /// Up to a link that stands, with nothing noted.
    void startAll(std::chrono::milliseconds inputWait = 1min) {
        makeManager(inputWait);
        ASSERT_EQ(init(), error_code());
        ASSERT_EQ(start(), error_code());
        take();
    }

    /// What was noted up to the end of all that was posted. Needs a record: a second init does
    /// nothing.
    Names take() {
        EXPECT_EQ(init(), hidCode(HidErrors::AlreadyStarted));
        return mChain.script.journal.take();
    }

    Names advance(IClock::Duration time) {
        mClock.advance(time);
        return take();
    }

    Names emit(std::int32_t x) {
        mChain.source->emit(x);
        return mChain.script.journal.take();
    }

    /// The link sleeps, and each connect waits until mHeld is set, and gives the result.
    void holdConnects(error_code result) {
        mManager->pauseConnection();
        take();
        mChain.script.onConnect = [result, released = mHeld.get_future().share()] {
            released.wait();
            return result;
        };
    }

    FakeChain mChain;
    HandClock mClock;
    std::promise<void> mHeld;
    std::optional<BluetoothHIDClientManager> mManager;
};

TEST_F(BluetoothHidClientManager, FirstStartBuildsTheChainAndConnects) {
    const auto surface = boost::make_shared<int>();
    makeManager();
    mManager->setInputContext(
        boost::shared_ptr<IInputContext>(surface, reinterpret_cast<IInputContext*>(surface.get())));
    EXPECT_EQ(init(), error_code());
    EXPECT_EQ(start(), error_code());
    EXPECT_EQ(take(), (Names{"sdp start", kAdd, "client", "source 3 2 1 2", "source start",
                             kConnect, "onConnected"}));
    EXPECT_EQ(mChain.script.context, surface);
    EXPECT_EQ(emit(5), Names{"frame 5"});
    EXPECT_EQ(cleanup(), error_code());
    EXPECT_EQ(mChain.script.journal.take(),
              (Names{"source stop", "disconnect", "sdp remove", "sdp stop"}));
}

TEST_F(BluetoothHidClientManager, OperationsOutOfTurnChangeNothingAndAFailedLinkIsTriedAgain) {
    makeManager();
    CapturedLog log(kLogError, kManager);
    EXPECT_EQ(start(), hidCode(HidErrors::InvalidState));
    EXPECT_EQ(stop(), hidCode(HidErrors::InvalidState));
    EXPECT_EQ(log.told(), Texts{"error start() not started, state=0"});
    EXPECT_EQ(cleanup(), error_code());
    EXPECT_EQ(init(), error_code());
    EXPECT_EQ(init(), hidCode(HidErrors::AlreadyStarted));
    EXPECT_EQ(stop(), hidCode(HidErrors::InvalidState));
    EXPECT_EQ(resume(), error_code());
    EXPECT_EQ(take(), (Names{"sdp start", kAdd}));
    mChain.script.onConnect = [] { return kRefused; };
    EXPECT_EQ(start(), kRefused);
    take();
    // What has failed is tried again at the next input.
    EXPECT_EQ(emit(1), (Names{kConnect, "onDisconnected 111"}));
    EXPECT_EQ(start(), hidCode(HidErrors::InvalidState));
    mChain.script.onConnect = [] { return error_code(); };
    EXPECT_EQ(emit(2), (Names{kConnect, "onConnected", "frame 2"}));
    EXPECT_EQ(stop(), error_code());
    EXPECT_EQ(start(), error_code());
    EXPECT_EQ(start(), hidCode(HidErrors::InvalidState));
}

TEST_F(BluetoothHidClientManager, RecordThatIsRefusedLeavesNothing) {
    makeManager();
    CapturedLog log(kLogError, kManager);
    mChain.script.sdpResults = {-3};
    EXPECT_EQ(init(), hidCode(HidErrors::SdpFailure));
    EXPECT_EQ(mChain.script.journal.take(), Names{"sdp start"});
    mChain.script.sdpResults = {0, 9};
    EXPECT_EQ(init(), hidCode(HidErrors::SdpHidRegistrationFailure));
    EXPECT_EQ(mChain.script.journal.take(), (Names{"sdp start", kAdd, "sdp stop"}));
    mChain.script.sdpResults = {0, 0, 4, 6};
    EXPECT_EQ(init(), error_code());
    EXPECT_EQ(cleanup(), error_code());
    EXPECT_EQ(mChain.script.journal.take(), (Names{"sdp start", kAdd, "sdp remove", "sdp stop"}));
    EXPECT_EQ(
        log.told(),
        (Texts{"error init() SDP failed to start:-3", "error init() SDP failed to add hid record:9",
               "error cleanup() failed deinit sdp:4", "error cleanup() failed deinit sdp:6"}));
}

TEST_F(BluetoothHidClientManager,
       IdleLinkSleepsUntilTheNextFrameAndItsTimeoutCountsFromItsSetting) {
    startAll();

    const struct {
        std::uint64_t timeout;
        IClock::Duration silence;
    } settings[] = {{~std::uint64_t{0}, 24h}, {1000, 999ms}, {5000, 4999ms}, {0, 1h}, {10000, 9s}};

    for (const auto& [timeout, silence] : settings) {
        mManager->setIdleTimeout(timeout);
        EXPECT_EQ(advance(silence), Names{}) << timeout;
    }
    EXPECT_EQ(emit(1), Names{"frame 1"});
    EXPECT_EQ(advance(9s), Names{});
    EXPECT_EQ(advance(1s), (Names{"disconnect", "source refresh"}));
    EXPECT_EQ(advance(1h), Names{});
    EXPECT_EQ(emit(2), (Names{kConnect, "onConnected", "frame 2"}));
    EXPECT_EQ(advance(10s), (Names{"disconnect", "source refresh"}));
    EXPECT_EQ(emit(3), (Names{kConnect, "onConnected", "frame 3"}));
    mManager->setIdleTimeout(0);
    EXPECT_EQ(emit(4), Names{"frame 4"});
    EXPECT_EQ(advance(1h), Names{});
    mManager->setIdleTimeout(1000);
    EXPECT_EQ(take(), Names{});
    EXPECT_EQ(advance(1s), (Names{"disconnect", "source refresh"}));
}

TEST_F(BluetoothHidClientManager, PausedLinkSleepsUntilInputOrResumption) {
    startAll();
    mManager->setIdleTimeout(1000);
    mManager->pauseConnection();
    EXPECT_EQ(take(), (Names{"disconnect", "source refresh"}));
    mManager->pauseConnection();
    EXPECT_EQ(advance(1h), Names{});
    EXPECT_EQ(resume(), error_code());
    EXPECT_EQ(take(), (Names{kConnect, "onConnected"}));
    EXPECT_EQ(resume(), error_code());
    EXPECT_EQ(take(), Names{});
    EXPECT_EQ(advance(1s), (Names{"disconnect", "source refresh"}));
}

TEST_F(BluetoothHidClientManager, CleanupDiscardsInputWithAWarningAndResumesNothing) {
    startAll();
    holdConnects(kRefused);
    CapturedLog log(kLogWarning, kManager);
    std::thread first([this] { mChain.source->emit(1); });
    mChain.script.journal.await(kConnect);
    std::thread second([source = mChain.source] { source->emit(2); });
    std::promise<error_code> resumed;
    mManager->resumeConnection([&](error_code ec) { resumed.set_value(ec); });
    std::promise<void> cleaned;
    mManager->cleanup([&](error_code) { cleaned.set_value(); });
    mHeld.set_value();
    first.join();
    second.join();
    cleaned.get_future().wait();
    // The second event may be behind the cleanup.
    EXPECT_EQ(stop(), hidCode(HidErrors::InvalidState));
    mChain.source->emit(3);
    EXPECT_EQ(log.told(), (Texts{kDiscarded, kDiscarded}));
    EXPECT_EQ(resumed.get_future().get(), error_code());
    EXPECT_EQ(mChain.script.journal.take(), (Names{kConnect, "onDisconnected 111", "source stop",
                                                   "disconnect", "sdp remove", "sdp stop"}));
}

TEST_F(BluetoothHidClientManager, SlowReconnectFreesTheInputThreadAndItsEventsArriveLateInOrder) {
    startAll(1ms);
    holdConnects(error_code());
    CapturedLog log(kLogError, kManager);
    mChain.source->emit(1);
    mChain.source->emit(2);
    EXPECT_EQ(log.told(), (Texts{kLate, kLate}));
    mHeld.set_value();
    EXPECT_EQ(take(), (Names{kConnect, "onConnected", "frame 1", "frame 2"}));
}

TEST_F(BluetoothHidClientManager, LostClientTakesDownTheChainOnTheWorker) {
    startAll();
    const auto lost = mChain.client;
    std::thread([&] { lost->onDisconnected(kRefused); }).join();
    EXPECT_EQ(take(), (Names{"source stop", "disconnect", "onDisconnected 111"}));
    EXPECT_EQ(start(), error_code());
    EXPECT_EQ(cleanup(), error_code());
    mChain.script.journal.take();
    std::thread([&] { lost->onDisconnected(kRefused); }).join();
    EXPECT_EQ(start(), hidCode(HidErrors::InvalidState));
    EXPECT_EQ(mChain.script.journal.take(), Names{"onDisconnected 111"});
}

TEST_F(BluetoothHidClientManager,
       SourceMayWaitForItsOwnThreadWhileItStopsAndReachNobodyAfterwards) {
    startAll();
    CapturedLog log(kLogWarning, kManager);
    mChain.script.onSourceStop = [this] { std::thread([this] { mChain.source->emit(1); }).join(); };
    EXPECT_EQ(stop(), error_code());
    EXPECT_EQ(log.told(), Texts{kDiscarded});
    EXPECT_EQ(take(), (Names{"source stop", "disconnect"}));
    EXPECT_EQ(start(), error_code());
    take();
    mManager.reset();
    mChain.source->emit(1);
    mChain.client->onDisconnected(kRefused);
    EXPECT_EQ(log.told(), Texts{kDiscarded});
    EXPECT_EQ(mChain.script.journal.take(), Names{});
}

TEST_F(BluetoothHidClientManager, DestructionFreesTheInputThreadsThatWait) {
    startAll();
    holdConnects(kRefused);
    CapturedLog log(kLogError, kManager);
    std::vector<std::thread> inputs;
    for (int i = 0; i < 3; ++i)
        inputs.emplace_back([source = mChain.source, i] { source->emit(i); });
    mChain.script.journal.await(kConnect);
    mHeld.set_value();
    mManager.reset();
    for (auto& input : inputs)
        input.join();
    EXPECT_EQ(log.told(), Texts{});
}

} // namespace
} // namespace orbelantine::test
