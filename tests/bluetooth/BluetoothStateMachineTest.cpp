#include "bluetooth/peers/BluetoothStateMachine.h"

#include "bluetooth/peers/BluetoothStates.h"
#include "core/common/errors/GenericError.h"
#include "tests/bluetooth/PeerManagerFixture.h"
#include "tests/support/CapturedLog.h"

#include <functional>
#include <set>

namespace orbelantine::test {
namespace {

using namespace std::chrono_literals;

const error_code kNetworkDown = genericError(generic::kNetworkDown);
const error_code kRefused(5, boost::system::generic_category());

class BluetoothStateMachineTest : public PeerManagerTest {
  protected:
    void setPaired(std::uint64_t address) { peer(address)->update(L"", 0, true); }
};

TEST_F(BluetoothStateMachineTest, FirstRescanTellsTheListByAddressEvenOfNoRadioAndNoPeers) {
    listen();
    mManager.start(false);
    endRescan(kNetworkDown);
    EXPECT_EQ(happened(), Texts({"start", "rescan", "started 0", "off"}));
    mManager.start(false);
    mRadio.simulatePeer(9);
    mRadio.simulatePeer(2);
    endRescan();
    EXPECT_EQ(told(), Texts({"started 0", "on 2 9"}));
}

TEST_F(BluetoothStateMachineTest, PeersAreRescannedFiveSecondsAfterEachRescanAndToldOfWhenChanged) {
    start({1});
    pass(5s - 1ns);
    EXPECT_EQ(calls(), Texts());
    pass(1ns);
    EXPECT_EQ(calls(), Texts({"rescan"}));
    mRadio.simulatePeer(1);
    endRescan();
    EXPECT_EQ(told(), Texts()) << "nothing has changed";
    pass(5s);
    mRadio.simulatePeer(1, L"renamed");
    endRescan();
    EXPECT_EQ(told(), Texts({"on 1"}));
    EXPECT_EQ(peer(1)->name(), L"renamed");
    mManager.refreshPeers();
    endRescan();
    EXPECT_EQ(told(), Texts({"on 1"})) << "a refresh tells in any case";
}

TEST_F(BluetoothStateMachineTest,
       PeerThatIsNotSeenOrLookedUpLeavesBetweenThirtyAndThirtyFiveSeconds) {
    start({1, 2, 3});
    const Peer lookedUp = peer(1);
    for (int seconds = 5; seconds <= 25; seconds += 5) {
        pass(5s);
        mRadio.simulatePeer(2);
        endRescan();
    }
    EXPECT_EQ(told(), Texts());
    // To be looked up is to be seen.
    pass(5s - 1ns);
    mManager.unpair(lookedUp);
    EXPECT_EQ(told(), Texts({"unpaired 1 126"}));
    pass(1ns);
    mRadio.simulatePeer(2);
    endRescan();
    EXPECT_EQ(told(), Texts({"on 1 2"}));
}

TEST_F(BluetoothStateMachineTest, PairedPeerLeavesWithTheFirstRescanThatDoesNotTellOfIt) {
    start({1, 2});
    setPaired(1);
    setPaired(2);
    pass(5s);
    mRadio.simulatePeer(2);
    EXPECT_FALSE(peer(2)->isPaired()) << "a sighting says nothing of pairing";
    endRescan();
    EXPECT_EQ(told(), Texts({"on 2"}));
}

TEST_F(BluetoothStateMachineTest,
       RadioThatIsOffIsToldOnceAndItsReturnIsNoticedAlsoByARequestOfAnUnknownPeer) {
    start({1});
    pass(5s);
    endRescan(kNetworkDown);
    pass(5s);
    endRescan(kNetworkDown);
    EXPECT_EQ(told(), Texts({"off 1"}));
    pass(5s);
    endRescan(kRefused);
    EXPECT_EQ(told(), Texts({"on 1"})) << "only that one code means off";
    mRadio.on = false;
    EXPECT_FALSE(mManager.isBluetoothOn());
    endRescan(kNetworkDown);
    EXPECT_EQ(told(), Texts({"off 1"}));
    EXPECT_FALSE(mManager.isBluetoothOn());
    EXPECT_FALSE(mRadio.isOpen("rescan")) << "no change, no rescan";
    mRadio.simulateRequest(6, L"new", 0x200);
    EXPECT_EQ(told(), Texts({"on 1 6", "request 6"})) << "by a radio that must be on";
}

TEST_F(BluetoothStateMachineTest, SwitchedOffScansComeAgainOnlyByARefreshOrANewEntry) {
    start();
    mManager.enablePeerScans(false);
    pass(1h);
    EXPECT_EQ(calls(), Texts());
    mManager.refreshPeers();
    endRescan();
    pass(1h);
    EXPECT_EQ(calls(), Texts({"rescan"}));
    mManager.enablePeerScans(true);
    pass(5s);
    EXPECT_EQ(calls(), Texts({"rescan"}));
}

TEST_F(BluetoothStateMachineTest, DiscoveryInquiresUntilItIsStopped) {
    start();
    mManager.startDiscovery();
    mRadio.simulateEnd("discover");
    settle();
    mRadio.simulatePeer(7);
    mRadio.simulateEnd("discover");
    EXPECT_EQ(happened(), Texts({"discover 3", "discover 3", "discover 3", "on 7"}));
    mManager.stopDiscovery();
    EXPECT_EQ(calls(), Texts({"rescan"}));
    mRadio.simulatePeer(8);
    mRadio.simulateEnd("discover", kNetworkDown);
    EXPECT_EQ(happened(), Texts({"off 7 8"})) << "the late end tells, and nothing follows";
}

TEST_F(BluetoothStateMachineTest, WhatTheBackendStillTellsAtTheEndIsDropped) {
    start({1});
    BluetoothStateMachine machine(
        mManager, [this] { return mRadio.make(); }, mClock);
    machine.enterStart(true);
    machine.enterFini();
    (void)told();
    mRadio.simulatePeer(5);
    mRadio.simulateRequest(6);
    mRadio.simulateEnd("rescan", kNetworkDown);
    pass(1h);
    EXPECT_EQ(machine.postAndWait([&](const auto&) { return machine.peers().size(); }), 0u);
    EXPECT_EQ(told(), Texts());
}

TEST_F(BluetoothStateMachineTest, PairingThatTheHostBeganIsApprovedByItself) {
    start({1});
    mManager.startDiscovery();
    mManager.pairPeer(boost::make_shared<BluetoothPeer>(CMacAddress(std::uint64_t{1})));
    EXPECT_EQ(calls(), Texts({"discover 3", "pair 1"}));
    mRadio.simulateRequest(1);
    EXPECT_EQ(calls(), Texts({"rescan", "authRemote 1"}));
    mRadio.simulateEnd("pair", kRefused);
    EXPECT_EQ(told(), Texts()) << "pair's own end decides nothing";
    mRadio.simulateEnd("authRemote");
    EXPECT_EQ(happened(), Texts({"rescan", "paired 1 0"})) << "idle again";
}

TEST_F(BluetoothStateMachineTest, PeerWithoutAddressIsTheFirstOfItsName) {
    start();
    mRadio.simulatePeer(3, L"phone");
    mRadio.simulatePeer(4, L"phone");
    mManager.pairPeer(boost::make_shared<BluetoothPeer>(L"phone"));
    EXPECT_EQ(calls(), Texts({"pair 3"}));
    mManager.cancelPair();
    mManager.pairPeer(boost::make_shared<BluetoothPeer>(L"other"));
    mManager.pairPeer({});
    EXPECT_EQ(happened(), Texts({"rescan", "rescan", "rescan"})) << "no request, nothing to tell";
}

TEST_F(BluetoothStateMachineTest, PairingWithoutARequestEndsInSilenceAndIsRemembered) {
    start({1});
    mManager.pairPeer(peer(1));
    pass(10s);
    mManager.cancelPair();
    EXPECT_EQ(calls(), Texts({"pair 1", "rescan"}));
    mManager.pairPeer(peer(1));
    pass(20s - 1ns);
    EXPECT_EQ(calls(), Texts({"pair 1"}));
    pass(1ns);
    EXPECT_EQ(happened(), Texts({"rescan"}));
    mRadio.simulateRequest(1);
    EXPECT_EQ(calls(), Texts({"rescan", "authRemote 1"})) << "what was asked for stays approved";
}

TEST_F(BluetoothStateMachineTest, RequestOfAPeerIsTheHostsToDecide) {
    start({1});
    mRadio.simulateRequest(1);
    EXPECT_EQ(happened(), Texts({"rescan", "request 1"}));
    mManager.authPair(peer(1));
    EXPECT_EQ(calls(), Texts({"authRemote 1"}));
    mRadio.simulateEnd("authRemote", kRefused);
    EXPECT_EQ(told(), Texts({"paired 1 5"}));
    endRescan();

    mRadio.simulateRequest(1);
    pass(10s);
    mManager.cancelPair();
    EXPECT_EQ(happened(), Texts({"rescan", "rescan", "rescan", "request 1", "paired 1 106"}));

    mRadio.simulateRequest(1);
    pass(20s - 1ns);
    EXPECT_EQ(told(), Texts({"request 1"})) << "the time of the request before has gone with it";
    pass(1ns);
    EXPECT_EQ(told(), Texts({"paired 1 138"}));
}

TEST_F(BluetoothStateMachineTest, PeerThatTheUserPairsMeanwhileEndsItsRequestAfterTheListIsTold) {
    start({1});
    mRadio.simulateRequest(1);
    mRadio.simulatePeer(2);
    settle();
    setPaired(1);
    peer(1)->touch();
    endRescan();
    EXPECT_EQ(told(), Texts({"request 1", "on 1 2", "paired by user 1"}));
}

TEST_F(BluetoothStateMachineTest, PairedPeerIsNotPairedAgainAndOnlyAPairedOneIsLetGo) {
    start({1});
    setPaired(1);
    mManager.pairPeer(peer(1));
    EXPECT_EQ(calls(), Texts({"rescan"}));
    mRadio.simulatePeer(1);
    settle();
    mManager.unpair(peer(1));
    EXPECT_EQ(told(), Texts({"unpaired 1 126"}));
    setPaired(1);
    mManager.unpair(peer(1));
    mRadio.simulateEnd("unpair", kRefused);
    setPaired(1);
    mManager.unpair(peer(1));
    mRadio.simulateEnd("unpair");
    EXPECT_EQ(told(), Texts({"unpaired 1 5", "unpaired 1 0"}));
    mManager.unpair(boost::make_shared<BluetoothPeer>(CMacAddress(std::uint64_t{8})));
    EXPECT_EQ(told(), Texts({"unpaired 8 109"}));
}

TEST_F(BluetoothStateMachineTest, ComputerIsMadeDiscoverableOnlyWhenIdle) {
    start();
    EXPECT_EQ(mManager.enableDiscoverable(), error_code());
    EXPECT_TRUE(mRadio.discoverable);
    mRadio.discoverableError = kRefused;
    EXPECT_EQ(mManager.disableDiscoverable(), kRefused);
    mManager.startDiscovery();
    EXPECT_EQ(mManager.enableDiscoverable().value(), 40);
    EXPECT_EQ(mManager.disableDiscoverable().value(), 40);
}

/// Each state that stays, how to get there from idle, and what it takes.
struct Cell {
    const char* state;
    std::function<void(BluetoothStateMachine&, const Peer&)> enter;
    std::set<std::string> events;
};

const Cell kCells[] = {
    {"BluetoothStateIdle",
     [](auto&, const auto&) {},
     {"refreshPeers", "enableDiscoverable", "disableDiscoverable", "startDiscovery",
      "schedulePeerScan", "enablePeerScans", "pair", "pairRequest", "unpair"}},
    {"BluetoothStateDiscovery",
     [](auto& machine, const auto&) { machine.startDiscovery(); },
     {"stopDiscovery", "discoverOnce", "pair", "pairRequest", "unpair"}},
    {"BluetoothStatePair",
     [](auto& machine, const auto& peer) { machine.pair(peer); },
     {"pairRequest", "cancelPair"}},
    {"BluetoothStatePairRequest",
     [](auto& machine, const auto& peer) { machine.pairRequest(peer); },
     {"pairedByUser", "authPair", "pairFinished", "cancelPair"}},
    {"BluetoothStateUnpair",
     [](auto& machine, const auto& peer) {
         peer->update(L"", 0, true);
         machine.unpair(peer);
     },
     {"unpairFinished"}},
    {"BluetoothStateFini", [](auto& machine, const auto&) { machine.enterFini(); }, {}},
};

using Event = std::pair<const char*, std::function<void(BluetoothState&, const Peer&)>>;

const Event kEvents[] = {
    {"refreshPeers", [](auto& state, const auto&) { state.refreshPeers(); }},
    {"enableDiscoverable", [](auto& state, const auto&) { (void)state.enableDiscoverable(); }},
    {"disableDiscoverable", [](auto& state, const auto&) { (void)state.disableDiscoverable(); }},
    {"startDiscovery", [](auto& state, const auto&) { state.startDiscovery(); }},
    {"stopDiscovery", [](auto& state, const auto&) { state.stopDiscovery(); }},
    {"discoverOnce", [](auto& state, const auto&) { state.discoverOnce(); }},
    {"schedulePeerScan", [](auto& state, const auto&) { state.schedulePeerScan(); }},
    {"enablePeerScans", [](auto& state, const auto&) { state.enablePeerScans(true); }},
    {"pair", [](auto& state, const auto& peer) { state.pair(peer); }},
    {"pairRequest", [](auto& state, const auto& peer) { state.pairRequest(peer); }},
    {"pairedByUser", [](auto& state, const auto& peer) { state.pairedByUser(peer); }},
    {"authPair", [](auto& state, const auto& peer) { state.authPair(peer); }},
    {"pairFinished", [](auto& state, const auto& peer) { state.pairFinished(peer, {}); }},
    {"cancelPair", [](auto& state, const auto&) { state.cancelPair(); }},
    {"unpair", [](auto& state, const auto& peer) { state.unpair(peer); }},
    {"unpairFinished", [](auto& state, const auto& peer) { state.unpairFinished(peer, {}); }},
};

TEST_F(BluetoothStateMachineTest, EachStateTakesItsOwnEventsAndLogsTheOthers) {
    const auto settled = [](auto& machine) {
        for (int i = 0; i < 4; ++i)
            machine.postAndWait([](const auto&) {});
    };
    for (const Cell& cell : kCells)
        for (const auto& [event, raise] : kEvents) {
            BluetoothStateMachine machine(
                mManager, [this] { return mRadio.make(); }, mClock);
            machine.enterStart(false);
            mRadio.simulatePeer(1);
            mRadio.simulateEnd("rescan");
            settled(machine);
            const Peer peer =
                machine.postAndWait([&](const auto&) { return machine.peers().at(0); });
            cell.enter(machine, peer);
            settled(machine);
            CapturedLog log(kLogDebug);
            raise(machine, peer);
            settled(machine);
            const std::string line = "orbelantine::BluetoothState::onNotProcessed: Event "
                                     "orbelantine::BluetoothState::" +
                                     std::string(event) + " not processed in " + cell.state;
            EXPECT_EQ(!log.missing({line}).empty(), cell.events.contains(event))
                << cell.state << ", " << event;
        }
}

TEST_F(BluetoothStateMachineTest, StatesAndTheirFailuresAreLogged) {
    CapturedLog log(kLogTrace, "orbelantine::");
    start({1});
    mRadio.simulatePeer(1, L"Anna\u2019s phone");
    mManager.pairPeer(boost::make_shared<BluetoothPeer>(L"nobody"));
    mRadio.discoverableError = kRefused;
    (void)mManager.enableDiscoverable();
    mManager.startDiscovery();
    mRadio.simulateEnd("discover", kNetworkDown);
    settle();
    EXPECT_EQ(
        log.missing(
            {"debug Entering function orbelantine::BluetoothStateStart::onEnter",
             "debug Leaving function orbelantine::BluetoothStateIdle::onExit",
             "debug BluetoothStateMachine::doUpdatePeer: New peer added:  (00:00:00:00:00:01), not "
             "paired",
             "trace BluetoothStateMachine::doUpdatePeer: Existing peer updated: Anna\xE2\x80\x99s "
             "phone "
             "(00:00:00:00:00:01), not paired",
             "error BluetoothStateMachine::doPair: unable to find discovered peer to pair",
             "error BluetoothStateMachine::doPairFinished: no remote peer information",
             "error BluetoothStateMachine::doEnableDiscoverable: unable to enable discoverability",
             "debug BluetoothStateMachine::doDiscoverOnce: impl->discoverOnce() has funished, "
             "bluetooth is OFF",
             "debug BluetoothStateMachine::doNotifyUpdatedPeersList() peers updated=1 btOn=0, "
             "previous btOn=1"}),
        Texts());
}

} // namespace
} // namespace orbelantine::test
