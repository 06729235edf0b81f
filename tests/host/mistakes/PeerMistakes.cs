using System;
using System.Linq;
using System.Runtime.CompilerServices;
using System.Threading;
using Orbelantine.Swig.bluetooth;

namespace Orbelantine.HostTests
{
    /// <summary>The peer manager, used as it should not be.</summary>
    public static class PeerMistakes
    {
        private static BluetoothPeerManager Left { get; set; }

        public static void EverythingAskedBeforeTheStartOrAfterTheStopSaysSo()
        {
            using (var manager = new BluetoothPeerManager())
            {
                manager.stop();
                ExpectRefusals(manager);
                Start(manager);
                manager.stop();
                ExpectRefusals(manager);
            }
        }

        public static void ACallbackThatWouldWaitForItselfIsToldSo() => InSignal(manager =>
        {
            Assert.Throws<InvalidOperationException>(() => manager.getPeers());
            Assert.Throws<InvalidOperationException>(() => manager.enableDiscoverable());
            Assert.Throws<InvalidOperationException>(() => manager.start(false));
            Assert.Throws<InvalidOperationException>(manager.stop);
            manager.startDiscovery();
        });

        public static void AManagerMayEndInItsOwnSignal() => InSignal(manager => manager.Dispose());

        public static void PeersThatAreNoneAreTaken()
        {
            using (var manager = new BluetoothPeerManager())
            using (var nameless = new BluetoothPeer(""))
            {
                Start(manager);
                foreach (BluetoothPeer peer in new[] { null, nameless })
                {
                    manager.pairPeer(peer);
                    manager.authPair(peer);
                    manager.unpair(peer);
                }
                manager.getPeers().Dispose();
            }
        }

        public static void AManagerMayBeStartedAndStoppedFromManyThreads()
        {
            using (var manager = new BluetoothPeerManager())
            {
                VirtualStack.SetNone();
                Thread[] threads = Enumerable.Range(0, 4).Select(i => new Thread(() =>
                {
                    for (int round = 0; round < 20; ++round)
                    {
                        manager.start(i % 2 == 0);
                        manager.stop();
                    }
                })).ToArray();
                foreach (Thread thread in threads)
                    thread.Start();
                foreach (Thread thread in threads)
                    thread.Join();
                ExpectRefusals(manager);
            }
        }

        public static void AManagerLeftStartedLetsTheProcessEnd()
        {
            Left = new BluetoothPeerManager();
            Left.onPeersUpdated.connect((on, peers) => Left.refreshPeers()).Dispose();
            Start(Left);
        }

        public static void AManagerLeftToTheCollectorEnds()
        {
            LeaveStarted();
            Collector.Run();
        }

        [MethodImpl(MethodImplOptions.NoInlining)]
        private static void LeaveStarted()
        {
            Start(new BluetoothPeerManager());
        }

        private static void Start(BluetoothPeerManager manager)
        {
            VirtualStack.SetNone();
            manager.start(true);
        }

        private static void InSignal(Action<BluetoothPeerManager> action)
        {
            var ended = new ManualResetEventSlim();
            var manager = new BluetoothPeerManager();
            manager.onPeersUpdated.connect((on, peers) =>
            {
                action(manager);
                ended.Set();
            }).Dispose();
            Start(manager);
            Assert.True(ended.Wait(4000), "waited in vain");
        }

        private static void ExpectRefusals(BluetoothPeerManager manager)
        {
            Assert.Throws<InvalidOperationException>(manager.refreshPeers);
            Assert.Throws<InvalidOperationException>(() => manager.isBluetoothOn());
            Assert.Throws<InvalidOperationException>(() => manager.getLocalName());
            Assert.Throws<InvalidOperationException>(() => manager.enableDiscoverable());
            Assert.Throws<InvalidOperationException>(() => manager.pairPeer(null));
            Assert.Throws<InvalidOperationException>(() => manager.getPeers());
        }
    }
}
