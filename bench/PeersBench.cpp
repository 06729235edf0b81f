#include "bluetooth/BluetoothPeer.h"
#include "bluetooth/peers/BluetoothPeerManager.h"
#include "tests/bluetooth/FakeRadio.h"

#include <benchmark/benchmark.h>
#include <boost/signals2/signal.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

#include <cstdint>
#include <vector>

namespace orbelantine {
namespace {

constexpr std::uint64_t kPeers = 1000;

/// A rescan that finds a thousand peers again, from the backend's signals to the host's.
void BM_PeersRescan(benchmark::State& state) {
    test::FakeRadio radio;
    BluetoothPeerManager manager([&] { return radio.make(); });
    std::size_t told = 0;
    manager.onPeersUpdated.connect([&](bool, const auto& peers) { told += peers.size(); });
    manager.start(false);
    const auto rescan = [&] {
        for (std::uint64_t address = 1; address <= kPeers; ++address)
            radio.simulatePeer(address, L"phone", 0x200);
        radio.simulateEnd("rescan");
        (void)manager.getHidDriverVersion();
    };
    rescan();
    for (auto _ : state) {
        manager.refreshPeers();
        rescan();
    }
    if (told != kPeers * (state.iterations() + 1))
        state.SkipWithError("not all peers were told");
}

BENCHMARK(BM_PeersRescan)->UseRealTime();

/// What a notification of a thousand peers costs by itself: the list, copied for each slot.
void BM_PeersTold(benchmark::State& state) {
    std::vector<boost::shared_ptr<BluetoothPeer>> peers;
    for (std::uint64_t address = 1; address <= kPeers; ++address)
        peers.push_back(boost::make_shared<BluetoothPeer>(CMacAddress(address)));
    boost::signals2::signal<void(bool, std::vector<boost::shared_ptr<BluetoothPeer>>)> signal;
    std::size_t told = 0;
    signal.connect([&](bool, const auto& list) { told += list.size(); });
    for (auto _ : state)
        signal(true, peers);
    benchmark::DoNotOptimize(told);
}

BENCHMARK(BM_PeersTold);

} // namespace
} // namespace orbelantine
