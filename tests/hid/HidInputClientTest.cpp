#include "hid/link/HidInputClient.h"

#include "bluetooth/BluetoothPeer.h"
#include "core/common/errors/ErrorAreas.h"
#include "tests/hid/HidChainFixture.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <thread>

namespace orbelantine {
namespace {

using namespace std::chrono_literals;
using test::CapturedLog;
using test::Names;
using Lines = std::vector<CapturedLog::Line>;
using Pauses = std::vector<IClock::Duration>;

const std::string kConnect = "connect 01:23:45:67:89:AB";
const error_code kRefused(111, boost::system::generic_category());
const std::string kClient = "orbelantine::HidInputClient::";

class HidInput : public testing::Test {
  protected:
    HidInput() {
        mClient.onConnected.connect([this] { note("onConnected"); });
        mClient.onDisconnected.connect(
            [this](error_code ec) { note("onDisconnected " + std::to_string(ec.value())); });
        mClient.onHidSdpRefresh.connect(
            [this](error_code ec) { note("refreshed " + std::to_string(ec.value())); });
    }

    void note(const std::string& what) { mChain.script.journal.note(what); }

    error_code connect() {
        return test::await([this](const auto& done) { mClient.connect(mPeer, done); });
    }

    error_code disconnect() {
        return test::await([this](const auto& done) { mClient.disconnect(done); });
    }

    /// What was noted since the last call, the service record left out.
    Names take() {
        Names notes = mChain.script.journal.take();
        std::erase_if(notes, [](const std::string& note) { return note.starts_with("sdp"); });
        return notes;
    }

    const BluetoothPeer mPeer{CMacAddress(std::uint64_t{0x0123456789AB})};
    test::FakeChain mChain;
    test::HandClock mClock;
    HidInputClient mClient{KVStore(), mClock};
};

TEST_F(HidInput, ConnectsAndDisconnectsAsOneSequence) {
    CapturedLog log(kLogInfo);
    EXPECT_EQ(connect(), error_code());
    EXPECT_EQ(connect(), HidErrors::getErrorCode(HidErrors::AlreadyStarted));
    EXPECT_EQ(disconnect(), error_code());
    EXPECT_EQ(take(), (Names{"client", "source 3 2 1 2", "source start", kConnect, "onConnected",
                             "source stop", "disconnect"}));
    EXPECT_EQ(connect(), error_code());
    const std::string already = HidErrors::getErrorCode(HidErrors::AlreadyStarted).message();
    EXPECT_EQ(log.take(),
              (Lines{{kLogInfo, kClient + "startHID() HID started"},
                     {kLogError, kClient + "startHID() failed to init HID, ec=" + already},
                     {kLogInfo, kClient + "stopHID() HID disconnected"},
                     {kLogInfo, kClient + "startHID() HID started"}}));
    EXPECT_EQ(mClock.pauses(), Pauses{});
}

TEST_F(HidInput, LinkThatFailsIsTheResultAndRaisesOnTheWorker) {
    CapturedLog log(kLogError);
    mChain.script.onConnect = [] { return kRefused; };
    std::thread::id onCompletion;
    std::promise<std::thread::id> onSignal;
    mClient.onDisconnected.connect(
        [&](error_code) { onSignal.set_value(std::this_thread::get_id()); });
    const auto operation = [&](const auto& done) {
        mClient.connect(mPeer, [&, done](error_code ec) {
            onCompletion = std::this_thread::get_id();
            done(ec);
        });
    };
    EXPECT_EQ(test::await(operation), kRefused);
    EXPECT_EQ(onSignal.get_future().get(), onCompletion);
    EXPECT_EQ(take().back(), "onDisconnected 111");
    const std::string refused = kRefused.message();
    EXPECT_EQ(
        log.take(),
        (Lines{{kLogError, kClient + "startHID() failed starting HID, ec=" + refused},
               {kLogError, kClient + "onManagerDisconnected() onDisconnected - " + refused}}));
}

TEST_F(HidInput, RecordRefreshRunsOnceAndGivesThePhoneThreeSeconds) {
    mClient.setHidRemoteSdpRefresh(true);
    mChain.script.unplugResult = kRefused;
    EXPECT_EQ(connect(), error_code());
    EXPECT_EQ(mClock.pauses(), Pauses{3s});
    EXPECT_EQ(disconnect(), error_code());
    EXPECT_EQ(take(), (Names{"client", kConnect, "unplug", "disconnect", kConnect, "disconnect",
                             "refreshed 111", "client", "source 3 2 1 2", "source start", kConnect,
                             "onConnected", "source stop", "disconnect"}));
    EXPECT_EQ(connect(), error_code());
    EXPECT_EQ(mClock.pauses(), Pauses{3s});
}

TEST_F(HidInput, RefreshThatCannotReachThePeerStillStartsAndSucceeds) {
    mClient.setHidRemoteSdpRefresh(true);
    mChain.script.onConnect = [] { return kRefused; };
    EXPECT_EQ(connect(), error_code());
    EXPECT_EQ(mClock.pauses(), Pauses{3s});
    EXPECT_EQ(disconnect(), error_code());
    EXPECT_EQ(take(),
              (Names{"client", kConnect, "refreshed 111", "client", "source 3 2 1 2",
                     "source start", kConnect, "onDisconnected 111", "source stop", "disconnect"}));
}

TEST_F(HidInput, PauseResumeAndIdleTimeoutReachTheLink) {
    EXPECT_EQ(connect(), error_code());
    mChain.script.journal.await("onConnected");
    take();
    mClient.pauseConnection();
    mChain.script.journal.await("source refresh");
    mClient.resumeConnection();
    mChain.script.journal.await("onConnected");
    EXPECT_EQ(take(), (Names{"disconnect", "source refresh", kConnect, "onConnected"}));
    CapturedLog log(kLogDebug);
    mClient.setIdleTimeout(1500);
    EXPECT_EQ(connect(), HidErrors::getErrorCode(HidErrors::AlreadyStarted));
    EXPECT_EQ(log.take().at(0).text, kClient + "setIdleTimeout() ms=1500");
    mClock.advance(1500ms);
    mChain.script.journal.await("source refresh");
}

TEST_F(HidInput, ForcedDisconnectBreaksAConnectThatHangs) {
    int completions = 0;
    mClient.forceDisconnect([&](error_code ec) { completions += !ec; });
    mClient.forceDisconnect({});
    EXPECT_EQ(completions, 1);
    mChain.script.onConnect = [this] {
        mChain.script.journal.await("force");
        return kRefused;
    };
    std::promise<error_code> connected;
    mClient.connect(mPeer, [&](error_code ec) { connected.set_value(ec); });
    mChain.script.journal.await(kConnect);
    mClient.forceDisconnect([&](error_code ec) { completions += !ec; });
    EXPECT_EQ(completions, 2);
    EXPECT_EQ(connected.get_future().get(), kRefused);
}

} // namespace
} // namespace orbelantine
