using System;
using System.Collections.Concurrent;
using System.Linq;
using System.Threading;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>The computer's peers, on a stack without a radio.</summary>
    public sealed class PeerManagerTests : IDisposable
    {
        private const int PatienceMs = 20000;
        private const int NetworkDown = 116;
        private const string Phone = "00:11:22:33:44:55";

        private readonly BluetoothPeerManager manager = new BluetoothPeerManager();
        // What the signals told, in words.
        private readonly BlockingCollection<string> told = new BlockingCollection<string>();

        public PeerManagerTests()
        {
            manager.onStarted.connect(code => told.Add("started " + code.value())).Dispose();
            manager.onPeersUpdated.connect((on, peers) =>
                told.Add((on ? "on" : "off") + string.Concat(peers.Select(peer => " " + peer.name())))).Dispose();
            manager.onPairRequest.connect(peer => told.Add("request " + peer.name())).Dispose();
            manager.onPairFinished.connect((peer, code) => told.Add("paired " + peer.name() + " " + code.value())).Dispose();
            manager.onUnpairFinished.connect((peer, code) => told.Add("unpaired " + peer.name() + " " + code.value())).Dispose();
        }

        public void Dispose()
        {
            manager.Dispose();
            VirtualStack.SetNone();
        }

        public void APhoneIsFoundAsksToBePairedAndIsLetGo()
        {
            using (var stack = new VirtualStack(Phone + "=Handy=phone", "00:00:00:00:00:07=Ears=headset"))
            {
                manager.start(true);
                Expect("started 0", "on");
                Assert.True(manager.isBluetoothOn(), "the radio is off");
                manager.startDiscovery();
                Expect("on Ears Handy");
                manager.stopDiscovery();
                using (BluetoothPeerVector peers = manager.getPeers())
                    Assert.Sequence(new[] { 5, 3 }, peers.Select(peer => peer.deviceType()));

                stack.Tell("ask Handy");
                Expect("request Handy");
                using (BluetoothPeer peer = PeerAt(1))
                {
                    manager.authPair(peer);
                    Expect("paired Handy 0");
                    // A search that finds the peer just now takes the mark away again.
                    string outcome;
                    do
                    {
                        peer.update(peer.name(), peer.deviceClass(), true);
                        manager.unpair(peer);
                        outcome = Expect(line => line.StartsWith("unpaired"), "unpaired");
                    } while (outcome == "unpaired Handy 126");
                    Assert.Equal("unpaired Handy 0", outcome);
                }
                using (BluetoothPeer peer = PeerAt(0))
                    manager.pairPeer(peer);
                Expect("paired Ears 0");
            }
        }

        public void AComputerWithoutAStackHasNoRadio()
        {
            VirtualStack.SetNone();
            manager.start(true);
            Expect("started 0", "off");
            Assert.True(!manager.isBluetoothOn(), "the radio is on");
            Assert.Equal("", manager.getLocalName());
            using (CMacAddress address = manager.getLocalAddress())
                Assert.True(address.isEmpty(), "there is an address");
            using (error_code code = manager.enableDiscoverable())
            {
                Assert.Equal(NetworkDown, code.value());
                Assert.Equal("Bluetooth is off, or there is no radio", code.message());
            }
            manager.startDiscovery();
            Assert.Equal(-1, manager.getHidDriverVersion());
            manager.stop();
            Assert.True(manager.onPeersUpdated.empty(), "a slot is left");
        }

        private BluetoothPeer PeerAt(int index)
        {
            using (BluetoothPeerVector peers = manager.getPeers())
                return peers[index];
        }

        private void Expect(params string[] lines)
        {
            foreach (string line in lines)
                Expect(told => told == line, line);
        }

        // What else is told meanwhile is passed over.
        private string Expect(Predicate<string> isWanted, string what)
        {
            for (string seen = "";;)
            {
                if (!told.TryTake(out string line, PatienceMs))
                    throw new AssertionException("waited in vain for " + what + " after " + seen);
                if (isWanted(line))
                    return line;
                seen += line + ", ";
            }
        }
    }
}
