#pragma once

#include "bluetooth/peers/BluetoothPeerManager.h"
#include "tests/bluetooth/FakeRadio.h"
#include "tests/support/HandClock.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine::test {

using Texts = std::vector<std::string>;
using Peer = boost::shared_ptr<BluetoothPeer>;

inline std::string numberOf(const Peer& peer) {
    return std::to_string(peer->address().getUllAddress());
}

/// A manager over a scripted radio and a clock moved by hand, with all that its signals told.
class PeerManagerTest : public testing::Test {
  protected:
    // A clock that has only begun would have seen every peer at no time.
    PeerManagerTest() { mClock.advance(std::chrono::hours(1)); }

    void listen() {
        mManager.onStarted.connect(
            [this](error_code ec) { mTold.push_back("started " + std::to_string(ec.value())); });
        mManager.onPeersUpdated.connect([this](bool on, const std::vector<Peer>& peers) {
            std::string line = on ? "on" : "off";
            for (const Peer& peer : peers)
                line += " " + numberOf(peer);
            mTold.push_back(line);
        });
        mManager.onPairRequest.connect(
            [this](const Peer& peer) { mTold.push_back("request " + numberOf(peer)); });
        mManager.onPairedByUser.connect(
            [this](const Peer& peer) { mTold.push_back("paired by user " + numberOf(peer)); });
        mManager.onPairFinished.connect([this](const Peer& peer, error_code ec) {
            mTold.push_back("paired " + numberOf(peer) + " " + std::to_string(ec.value()));
        });
        mManager.onUnpairFinished.connect([this](const Peer& peer, error_code ec) {
            mTold.push_back("unpaired " + numberOf(peer) + " " + std::to_string(ec.value()));
        });
    }

    /// Started, with these peers found by the first rescan; idle.
    void start(const std::vector<std::uint64_t>& peers = {}) {
        listen();
        mManager.start(true);
        for (const std::uint64_t peer : peers)
            mRadio.simulatePeer(peer);
        mRadio.simulateEnd("rescan");
        (void)told();
        (void)mRadio.calls();
    }

    /// Lets what is queued run, and what that queues.
    void settle() {
        for (int i = 0; i < 4; ++i)
            (void)mManager.getPeers();
    }

    /// What the signals told since the last call.
    Texts told() {
        settle();
        return std::exchange(mTold, {});
    }

    Texts calls() {
        settle();
        return mRadio.calls();
    }

    /// What the radio was asked, and then what the signals told.
    Texts happened() {
        Texts all = calls();
        std::ranges::copy(told(), std::back_inserter(all));
        return all;
    }

    void endRescan(error_code ec = {}) {
        mRadio.simulateEnd("rescan", ec);
        settle();
    }

    void pass(IClock::Duration time) {
        settle();
        mClock.advance(time);
        settle();
    }

    Peer peer(std::uint64_t address) {
        for (const Peer& listed : mManager.getPeers())
            if (listed->address().getUllAddress() == address)
                return listed;
        return {};
    }

    HandClock mClock;
    FakeRadio mRadio;
    // Written on the worker, read when it has settled.
    Texts mTold;
    BluetoothPeerManager mManager{[this] { return mRadio.make(); }, mClock};
};

} // namespace orbelantine::test
