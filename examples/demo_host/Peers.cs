using System;
using System.Collections.Generic;
using System.Linq;
using Orbelantine.Swig.bluetooth;

namespace Orbelantine.DemoHost
{
    /// <summary>The computer's Bluetooth peers, found and paired through the library. Nothing is started
    /// before the first step with peers; each throws a PeerException where it fails.</summary>
    public sealed class Peers : IDisposable
    {
        // An inquiry takes 3.84 s, and tells nothing where it finds nothing new.
        private const int InquiryMs = 4500;
        private const int RadioMs = 10000;
        private const int RequestMs = 10000;
        // A pairing may wait 20 s for each side.
        private const int PairingMs = 45000;
        private const int NotPaired = 126;
        private const int UnpairTries = 5;

        private readonly ControlPipe control;
        private readonly StopSignal stop;
        private readonly PeerWatch watch;
        private BluetoothPeerManager manager;

        public Peers(ControlPipe control, Timeline timeline, StopSignal stop)
        {
            this.control = control;
            this.stop = stop;
            watch = new PeerWatch(timeline, stop);
        }

        /// <summary>Until a new peer shows, or the inquiry has had its time.</summary>
        public void Discover()
        {
            RequireRadio();
            var known = new HashSet<string>(watch.Peers.Select(peer => peer.Address));
            manager.startDiscovery();
            bool found = watch.WaitFor(() => watch.Peers.Any(peer => !known.Contains(peer.Address)), InquiryMs);
            manager.stopDiscovery();
            if (found || !stop.IsSet)
                Console.WriteLine(Describe());
        }

        /// <summary>The computer asks; the phone's question in its turn is agreed to by the library.</summary>
        public void Pair(string name)
        {
            Peer peer = ChooseUnpaired(name);
            watch.Expect();
            manager.pairPeer(peer.Native);
            AwaitPairing(peer);
        }

        /// <summary>The peer asks, at once where it is a virtual one.</summary>
        public void Approve(string name)
        {
            Peer peer = ChooseUnpaired(name);
            watch.Expect();
            control.Send("ask " + peer.Name);
            if (!watch.WaitFor(() => watch.Asking == peer.Address, RequestMs))
                throw new PeerException("'" + peer.Name + "' has not asked to be paired");
            manager.authPair(peer.Native);
            AwaitPairing(peer);
        }

        public void Unpair(string name)
        {
            RequireRadio();
            Peer peer = Choose(name);
            if (!watch.IsPaired(peer))
                throw new PeerException("'" + peer.Name + "' is not paired");
            // Whoever finds the peer again takes the mark away, which may be just now.
            int error = NotPaired;
            for (int tries = 0; error == NotPaired && tries < UnpairTries; ++tries)
            {
                watch.Expect();
                peer.Mark(true);
                manager.unpair(peer.Native);
                error = Await("unpairing", peer);
            }
            Refuse("unpairing", peer);
        }

        public void SwitchRadio(bool on)
        {
            Start();
            control.Send(on ? "radio on" : "radio off");
            // The manager notices within five seconds, and at once where it is asked.
            if (!watch.WaitFor(() => watch.IsOn == on, RadioMs, () => manager.isBluetoothOn()))
                throw new PeerException("Bluetooth has not been switched " + (on ? "on" : "off"));
        }

        public void Dispose()
        {
            if (manager == null)
                return;
            manager.stop();
            manager.Dispose();
        }

        private void Start()
        {
            if (manager != null)
                return;
            manager = new BluetoothPeerManager();
            watch.Listen(manager);
            manager.start(true);
            if (!watch.WaitFor(() => watch.Updates > 0, RadioMs))
                throw new PeerException("the list of peers does not come; the log tells why");
        }

        private void RequireRadio()
        {
            Start();
            if (!watch.IsOn)
                throw new PeerException("Bluetooth is off, or the computer has none: the log tells which. "
                                        + "'radio on' switches a virtual one; './dev demo' brings it along");
        }

        private Peer Choose(string name)
        {
            Peer peer = watch.Peers.Find(one => string.Equals(one.Name, name, StringComparison.OrdinalIgnoreCase));
            if (peer != null)
                return peer;
            string known = string.Join(", ", watch.Peers.Select(one => "'" + one.Name + "'"));
            throw new PeerException("there is no peer '" + name + "'; " +
                                    (known == "" ? "none is known yet, and 'discover' looks for them" : "there are " + known));
        }

        private Peer ChooseUnpaired(string name)
        {
            RequireRadio();
            Peer peer = Choose(name);
            if (watch.IsPaired(peer))
                throw new PeerException("'" + peer.Name + "' is paired already");
            return peer;
        }

        private void AwaitPairing(Peer peer)
        {
            Await("pairing", peer);
            Refuse("pairing", peer);
            Console.WriteLine(Describe());
        }

        // The error, 0 for success.
        private int Await(string what, Peer peer)
        {
            if (!watch.WaitFor(() => watch.Outcome != null, PairingMs))
                throw new PeerException(what + " '" + peer.Name + "' has come to no end");
            return watch.Outcome.Error;
        }

        private void Refuse(string what, Peer peer)
        {
            if (watch.Outcome.Failure != null)
                throw new PeerException(what + " '" + peer.Name + "' failed: " + watch.Outcome.Failure);
        }

        private string Describe()
        {
            if (watch.Peers.Count == 0)
                return "  no peers";
            var rows = new List<string[]> { new[] { "  peer", "address", "kind", "paired" } };
            rows.AddRange(watch.Peers.Select(peer => new[]
            {
                "  " + peer.Name, peer.Address, peer.Kind, watch.IsPaired(peer) ? "yes" : "no",
            }));
            return Table.Text(rows, "  ");
        }
    }
}
