using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.Linq;
using System.Threading;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;

namespace Orbelantine.DemoHost
{
    /// <summary>What the peer manager has told from its own thread, for one that waits for it.</summary>
    public sealed class PeerWatch
    {
        private const int PollMs = 20;

        private readonly object gate = new object();
        private readonly Timeline timeline;
        private readonly StopSignal stop;
        private readonly HashSet<string> paired = new HashSet<string>();
        private List<Peer> peers = new List<Peer>();

        public PeerWatch(Timeline timeline, StopSignal stop)
        {
            this.timeline = timeline;
            this.stop = stop;
        }

        // To be read within WaitFor, or where nothing is under way.

        public int Updates { get; private set; }
        public bool IsOn { get; private set; }
        /// <summary>The address of the peer that asks to be paired; null for none.</summary>
        public string Asking { get; private set; }
        /// <summary>How the last pairing or unpairing ended; null while it goes on.</summary>
        public PeerOutcome Outcome { get; private set; }

        /// <summary>By ascending address.</summary>
        public List<Peer> Peers
        {
            get
            {
                lock (gate)
                    return peers;
            }
        }

        public bool IsPaired(Peer peer)
        {
            lock (gate)
                return paired.Contains(peer.Address);
        }

        public void Listen(BluetoothPeerManager manager)
        {
            manager.onStarted.connect(code => Add(code.value() == 0 ? "started" : "not started: " + Link.Explain(code))).Dispose();
            manager.onPeersUpdated.connect(TakePeers).Dispose();
            manager.onPairRequest.connect(TakeRequest).Dispose();
            manager.onPairedByUser.connect(peer => TakeEnd(peer, 0, null, true)).Dispose();
            manager.onPairFinished.connect((peer, code) => TakeEnd(peer, code.value(), code, true)).Dispose();
            manager.onUnpairFinished.connect((peer, code) => TakeEnd(peer, code.value(), code, false)).Dispose();
        }

        /// <summary>Forgets what was told of an earlier request.</summary>
        public void Expect()
        {
            lock (gate)
            {
                Asking = null;
                Outcome = null;
            }
        }

        /// <summary>Waits until it is so, for at most a time, or until stopped. `nudge`, if there is one, is
        /// called again and again meanwhile.</summary>
        public bool WaitFor(Func<bool> isSo, int limitMs, Action nudge = null)
        {
            for (Stopwatch waited = Stopwatch.StartNew(); !stop.IsSet; nudge?.Invoke())
                lock (gate)
                {
                    if (isSo())
                        return true;
                    if (waited.ElapsedMilliseconds > limitMs)
                        return false;
                    Monitor.Wait(gate, PollMs);
                }
            return false;
        }

        private void TakePeers(bool isOn, BluetoothPeerVector found)
        {
            List<Peer> now = found.Select(peer => new Peer(peer)).ToList();
            Add((isOn ? "Bluetooth on, " : "Bluetooth off, ") + (now.Count == 1 ? "1 peer" : now.Count + " peers"));
            Change(() =>
            {
                IsOn = isOn;
                peers = now;
                ++Updates;
            });
        }

        private void TakeRequest(BluetoothPeer native)
        {
            var peer = new Peer(native);
            Add(peer.Name + " asks to be paired");
            Change(() => Asking = peer.Address);
        }

        private void TakeEnd(BluetoothPeer native, int error, error_code code, bool isPairing)
        {
            var peer = new Peer(native);
            string failure = error == 0 ? null : Link.Explain(code);
            Add(peer.Name + (failure != null ? ": " + failure : isPairing ? " paired" : " unpaired"));
            // One that is marked and no longer known would leave the list.
            if (failure == null)
                peer.Mark(isPairing);
            Change(() =>
            {
                if (failure == null && isPairing)
                    paired.Add(peer.Address);
                else if (failure == null)
                    paired.Remove(peer.Address);
                Outcome = new PeerOutcome(error, failure);
            });
        }

        private void Add(string what)
        {
            timeline.Add(Timeline.Peers, what);
        }

        private void Change(Action change)
        {
            lock (gate)
            {
                change();
                Monitor.PulseAll(gate);
            }
        }
    }
}
