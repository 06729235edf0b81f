#include "bluetooth/peers/BluetoothPeerManager.h"

#include "core/common/errors/Exception.h"
#include "core/common/errors/GenericError.h"
#include "tests/bluetooth/PeerManagerFixture.h"

#include <atomic>
#include <future>
#include <memory>
#include <thread>

namespace orbelantine::test {
namespace {

using namespace std::chrono_literals;

class BluetoothPeerManagerTest : public PeerManagerTest {};

TEST_F(BluetoothPeerManagerTest, AsksTheBackendWhatItIsAsked) {
    mManager.start(false);
    EXPECT_EQ(mManager.getLocalName(), L"computer");
    EXPECT_EQ(mManager.getLocalAddress().getUllAddress(), 99);
    EXPECT_EQ(mManager.verifyHidDriverVersion().value(), 4);
    EXPECT_EQ(mManager.verifyHandsfreeDriverVersion().value(), 5);
    EXPECT_EQ(mManager.getHidDriverVersion(), 6);
    EXPECT_FALSE(mRadio.hasListeners());
    mManager.start(true);
    EXPECT_TRUE(mRadio.hasListeners());
}

TEST_F(BluetoothPeerManagerTest, StopEndsTheBackendAndDropsEverySlotAlsoWithoutAStart) {
    listen();
    mManager.stop();
    EXPECT_TRUE(mManager.onStarted.empty());
    EXPECT_EQ(mRadio.calls(), Texts());
    start({1});
    EXPECT_EQ(mManager.enableDiscoverable(), error_code());
    mManager.startDiscovery();
    settle();
    (void)mRadio.calls();
    mManager.stop();
    EXPECT_EQ(mRadio.calls(), Texts({"disableDiscoverable", "stop", "destroyed"}));
    EXPECT_TRUE(mManager.onStarted.empty() && mManager.onPeersUpdated.empty() &&
                mManager.onPairRequest.empty() && mManager.onPairedByUser.empty() &&
                mManager.onPairFinished.empty() && mManager.onUnpairFinished.empty());
    start({2});
    EXPECT_FALSE(peer(1)) << "each start begins anew";
    EXPECT_TRUE(peer(2));
}

TEST_F(BluetoothPeerManagerTest, StartThatFailsSaysSoAndLeavesTheBackendStopped) {
    mRadio.startError = genericError(generic::kNotPermitted);
    listen();
    mManager.start(false);
    mManager.startDiscovery();
    EXPECT_EQ(happened(), Texts({"start", "stop", "started 1"}));
}

TEST_F(BluetoothPeerManagerTest, SecondStartReplacesTheMachineAndKeepsTheSlots) {
    start({1});
    mManager.startDiscovery();
    settle();
    (void)mRadio.calls();
    mManager.start(false);
    mRadio.simulateEnd("rescan");
    EXPECT_EQ(happened(), Texts({"destroyed", "start", "rescan", "started 0", "on"}));
}

TEST_F(BluetoothPeerManagerTest, EverythingButStopThrowsUnlessStarted) {
    EXPECT_THROW(mManager.refreshPeers(), Exception);
    EXPECT_THROW((void)mManager.isBluetoothOn(), Exception);
    EXPECT_THROW((void)mManager.enableDiscoverable(), Exception);
    start();
    mManager.stop();
    EXPECT_THROW(mManager.pairPeer({}), Exception);
    EXPECT_THROW((void)mManager.getPeers(), Exception);
}

TEST_F(BluetoothPeerManagerTest, SlotMayCallWhatReturnsAtOnceAndNothingElse) {
    std::promise<Texts> outcome;
    mManager.onStarted.connect([&](error_code) {
        Texts thrown;
        const auto attempt = [&](const char* name, auto call) {
            try {
                call();
            } catch (const Exception&) {
                thrown.push_back(name);
            }
        };
        attempt("startDiscovery", [&] { mManager.startDiscovery(); });
        attempt("getPeers", [&] { (void)mManager.getPeers(); });
        attempt("disableDiscoverable", [&] { (void)mManager.disableDiscoverable(); });
        attempt("start", [&] { mManager.start(false); });
        attempt("stop", [&] { mManager.stop(); });
        outcome.set_value(thrown);
    });
    mManager.start(false);
    EXPECT_EQ(outcome.get_future().get(),
              Texts({"getPeers", "disableDiscoverable", "start", "stop"}));
}

TEST_F(BluetoothPeerManagerTest, ManagerMayGoInItsOwnSlot) {
    auto manager = std::make_unique<BluetoothPeerManager>([this] { return mRadio.make(); }, mClock);
    manager->onPeersUpdated.connect([&](bool, const auto&) { manager.reset(); });
    manager->start(false);
    mRadio.simulatePeer(1);
    mRadio.simulateEnd("rescan");
    // The machine ends on a thread of its own.
    Texts calls;
    while (std::find(calls.begin(), calls.end(), "destroyed") == calls.end()) {
        std::this_thread::yield();
        std::ranges::copy(mRadio.calls(), std::back_inserter(calls));
    }
    EXPECT_FALSE(manager);
}

/// Whatever is going on, a stop, a second start and an end come through while others call.
TEST_F(BluetoothPeerManagerTest, MayBeStoppedAnywhere) {
    std::atomic<bool> ended = false;
    std::thread others([&] {
        for (unsigned round = 0; !ended; ++round) {
            try {
                const auto peers = mManager.getPeers();
                mManager.startDiscovery();
                if (!peers.empty())
                    mManager.pairPeer(peers[round % peers.size()]);
                (void)mManager.isBluetoothOn();
                mManager.cancelPair();
                mManager.stopDiscovery();
            } catch (const Exception&) {
                std::this_thread::yield();
            }
        }
    });
    for (unsigned round = 0; round < 200; ++round) {
        std::atomic<unsigned> told = 0;
        mManager.onPeersUpdated.connect([&](bool, const auto& peers) {
            told += 1 + static_cast<unsigned>(peers.size());
            mManager.refreshPeers();
        });
        mManager.start(round % 2 == 0);
        if (round % 3 == 0)
            mManager.start(true);
        mRadio.simulatePeer(round);
        mRadio.simulateEnd("rescan");
        while (round % 5 == 0 && told == 0)
            std::this_thread::yield();
        mManager.stop();
    }
    ended = true;
    others.join();
    EXPECT_THROW((void)mManager.getPeers(), Exception);
}

} // namespace
} // namespace orbelantine::test
