#include "hid/link/HidInputClient.h"

#include "bluetooth/BluetoothPeer.h"
#include "core/common/errors/ErrorAreas.h"
#include "tests/hid/HidChainFixture.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace orbelantine::test {
namespace {

using namespace std::chrono_literals;
using Pauses = std::vector<IClock::Duration>;

const std::string kPhoneConnect = "connect 01:23:45:67:89:AB";
const error_code kPhoneRefused(111, boost::system::generic_category());
const error_code kTakenBack = HidErrors::getErrorCode(HidErrors::InvalidState);
const std::string kClient = "orbelantine::HidInputClient::";

class HidInput : public testing::Test {
  protected:
    HidInput() { makeClient(); }

    void makeClient() {
        mClient = boost::make_shared<HidInputClient>(KVStore(), mClock);
        mClient->onConnected.connect([this] { note("onConnected"); });
        mClient->onDisconnected.connect(
            [this](error_code ec) { note("onDisconnected " + std::to_string(ec.value())); });
        mClient->onHidSdpRefresh.connect(
            [this](error_code ec) { note("refreshed " + std::to_string(ec.value())); });
    }

    void note(const std::string& what) { mChain.script.journal.note(what); }

    error_code connect() {
        return await([this](const auto& done) { mClient->connect(mPeer, done); });
    }

    error_code disconnect() {
        return await([this](const auto& done) { mClient->disconnect(done); });
    }

    /// What was noted since the last call, the service record left out.
    Names take() {
        Names notes = mChain.script.journal.take();
        std::erase_if(notes, [](const std::string& note) { return note.starts_with("sdp"); });
        return notes;
    }

    const BluetoothPeer mPeer{CMacAddress(std::uint64_t{0x0123456789AB})};
    FakeChain mChain;
    HandClock mClock;
    boost::shared_ptr<HidInputClient> mClient;
};

TEST_F(HidInput, ConnectsAndDisconnectsAsOneSequence) {
    CapturedLog log(kLogInfo, kClient);
    EXPECT_EQ(connect(), error_code());
    EXPECT_EQ(connect(), HidErrors::getErrorCode(HidErrors::AlreadyStarted));
    EXPECT_EQ(disconnect(), error_code());
    EXPECT_EQ(take(), (Names{"client", "source 3 2 1 2", "source start", kPhoneConnect,
                             "onConnected", "source stop", "disconnect"}));
    EXPECT_EQ(connect(), error_code());
    const std::string already = HidErrors::getErrorCode(HidErrors::AlreadyStarted).message();
    EXPECT_EQ(
        log.told(),
        (Texts{"info startHID() HID started", "error startHID() failed to init HID, ec=" + already,
               "info stopHID() HID disconnected", "info startHID() HID started"}));
    EXPECT_EQ(mClock.pauses(), Pauses{});
}

TEST_F(HidInput, LinkThatFailsIsTheResultAndRaisesOnTheWorker) {
    CapturedLog log(kLogError, kClient);
    mChain.script.onConnect = [] { return kPhoneRefused; };
    std::thread::id onCompletion;
    std::promise<std::thread::id> onSignal;
    mClient->onDisconnected.connect(
        [&](error_code) { onSignal.set_value(std::this_thread::get_id()); });
    const auto operation = [&](const auto& done) {
        mClient->connect(mPeer, [&, done](error_code ec) {
            onCompletion = std::this_thread::get_id();
            done(ec);
        });
    };
    EXPECT_EQ(await(operation), kPhoneRefused);
    EXPECT_EQ(onSignal.get_future().get(), onCompletion);
    EXPECT_EQ(take().back(), "onDisconnected 111");
    const std::string refused = kPhoneRefused.message();
    EXPECT_EQ(log.told(), (Texts{"error startHID() failed starting HID, ec=" + refused,
                                 "error onManagerDisconnected() onDisconnected - " + refused}));
}

TEST_F(HidInput, RecordRefreshRunsOnceAndGivesThePhoneThreeSecondsEvenOutOfReach) {
    const std::pair<error_code, Names> cases[] = {
        {{},
         {"client", kPhoneConnect, "unplug", "disconnect", kPhoneConnect, "disconnect",
          "refreshed 111", "client", "source 3 2 1 2", "source start", kPhoneConnect, "onConnected",
          "source stop", "disconnect"}},
        {kPhoneRefused,
         {"client", kPhoneConnect, "refreshed 111", "client", "source 3 2 1 2", "source start",
          kPhoneConnect, "onDisconnected 111", "source stop", "disconnect"}}};

    mChain.script.unplugResult = kPhoneRefused;
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        makeClient();
        mClient->setHidRemoteSdpRefresh(true);
        mChain.script.onConnect = [result = cases[i].first] { return result; };
        EXPECT_EQ(connect(), error_code());
        EXPECT_EQ(disconnect(), error_code());
        EXPECT_EQ(take(), cases[i].second);
        EXPECT_EQ(mClock.pauses(), Pauses(i + 1, 3s));
    }
    EXPECT_EQ(connect(), kPhoneRefused);
    EXPECT_EQ(mClock.pauses(), Pauses(2, 3s));
}

TEST_F(HidInput, PauseResumeAndIdleTimeoutReachTheLink) {
    EXPECT_EQ(connect(), error_code());
    mChain.script.journal.await("onConnected");
    take();
    mClient->pauseConnection();
    mChain.script.journal.await("source refresh");
    mClient->resumeConnection();
    mChain.script.journal.await("onConnected");
    EXPECT_EQ(take(), (Names{"disconnect", "source refresh", kPhoneConnect, "onConnected"}));
    CapturedLog log(kLogDebug, kClient);
    mClient->setIdleTimeout(1500);
    EXPECT_EQ(connect(), HidErrors::getErrorCode(HidErrors::AlreadyStarted));
    EXPECT_EQ(log.told().at(0), "debug setIdleTimeout() ms=1500");
    mClock.advance(1500ms);
    mChain.script.journal.await("source refresh");
}

TEST_F(HidInput, ForcedDisconnectOrDeletionBreaksAConnectThatHangsAndCompletesWhatWaits) {
    int completions = 0;
    const auto count = [&](error_code ec) { completions += !ec; };
    mClient->forceDisconnect(count);
    mClient->forceDisconnect({});
    EXPECT_EQ(completions, 1);
    mChain.script.onConnect = [this] {
        mChain.script.journal.await("force");
        return kPhoneRefused;
    };
    for (const bool deletes : {false, true}) {
        makeClient();
        std::promise<error_code> connected;
        std::promise<error_code> disconnected;
        mClient->connect(mPeer, [&](error_code ec) { connected.set_value(ec); });
        mClient->disconnect([&](error_code ec) { disconnected.set_value(ec); });
        mChain.script.journal.await(kPhoneConnect);
        if (deletes)
            mClient.reset();
        else
            mClient->forceDisconnect(count);
        EXPECT_EQ(connected.get_future().get(), kPhoneRefused);
        EXPECT_EQ(disconnected.get_future().get(), deletes ? kTakenBack : error_code());
        take();
    }
    EXPECT_EQ(completions, 2);
}

TEST_F(HidInput, MayBeDeletedOnItsWorkerInACompletionOrASignal) {
    const std::function<void(const std::function<void()>& end)> places[] = {
        [&](const auto& end) { mClient->connect(mPeer, [=](error_code) { end(); }); },
        [&](const auto& end) {
            mClient->onConnected.connect(end);
            mClient->connect(mPeer, {});
        },
        [&](const auto& end) {
            mChain.script.onConnect = [] { return kPhoneRefused; };
            mClient->onDisconnected.connect([=](error_code) { end(); });
            mClient->connect(mPeer, {});
        },
        [&](const auto& end) {
            mClient->setHidRemoteSdpRefresh(true);
            mClient->onHidSdpRefresh.connect([=](error_code) { end(); });
            mClient->connect(mPeer, {});
        },
    };

    for (const auto& place : places) {
        makeClient();
        std::promise<void> ended;
        std::promise<error_code> dropped;
        place([&] {
            mClient->disconnect([&](error_code ec) { dropped.set_value(ec); });
            mClient.reset();
            ended.set_value();
        });
        ended.get_future().wait();
        EXPECT_EQ(dropped.get_future().get(), kTakenBack);
    }
}

TEST_F(HidInput, ExceptionOnAWorkerFailsAllThatIsAskedAndIsToldInTheLog) {
    CapturedLog log(kLogError);
    mChain.script.onConnect = []() -> error_code { throw std::runtime_error("out of order"); };
    EXPECT_EQ(connect(), kTakenBack);
    EXPECT_EQ(connect(), kTakenBack);
    EXPECT_EQ(disconnect(), kTakenBack);
    mClient->onEventError.connect([](error_code) {});
    mClient->connect(mPeer, [](error_code) { throw std::runtime_error("a completion's"); });
    EXPECT_EQ(connect(), kTakenBack);
    mClient.reset();
    EXPECT_EQ(log.missing({"what: out of order", "BluetoothHIDClientManagerIoThread has ended",
                           "what: a completion's", "HidInputClientIoThread has ended"}),
              Texts());
}

} // namespace
} // namespace orbelantine::test
