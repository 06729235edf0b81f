using System;
using System.Linq;
using System.Threading.Tasks;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;

static class FindAndPair
{
    static int Main(string[] arguments)
    {
        string wanted = arguments[0];
        var found = new TaskCompletionSource<BluetoothPeer>(TaskCreationOptions.RunContinuationsAsynchronously);
        var paired = new TaskCompletionSource<int>(TaskCreationOptions.RunContinuationsAsynchronously);

        using (var manager = new BluetoothPeerManager())
        {
            // Connected before the start, and again after each stop. They run on the manager's thread,
            // where only what returns at once may be called.
            manager.onPeersUpdated.connect((bluetoothOn, peers) =>
            {
                Console.WriteLine(bluetoothOn ? peers.Count + " peers" : "Bluetooth is off");
                BluetoothPeer phone = peers.FirstOrDefault(peer => peer.name() == wanted);
                if (phone != null)
                    found.TrySetResult(phone);
            });
            manager.onPairRequest.connect(peer =>
            {
                // A phone asks. Here nobody is let in who wasn't asked first; authPair(peer) agrees.
                Console.WriteLine(peer.name() + " asks to be paired, and is refused");
                manager.cancelPair();
            });
            manager.onPairFinished.connect((peer, code) =>
            {
                if (code.value() == 0)
                    peer.update(peer.name(), peer.deviceClass(), true);    // the list's own peer
                paired.TrySetResult(code.value());
            });

            manager.start(true);                          // true: phones may ask, too
            manager.startDiscovery();
            if (!found.Task.Wait(TimeSpan.FromSeconds(60)))
                return Fail(wanted + " is not in the neighbourhood, or can't be discovered");
            manager.pairPeer(found.Task.Result);          // ends the discovery; its own request is agreed to
            if (!paired.Task.Wait(TimeSpan.FromSeconds(25)))
                return Fail(wanted + " did not answer");  // no request came of it: nothing tells of that
            if (paired.Task.Result != 0)
                return Fail("error " + paired.Task.Result);
            Console.WriteLine(wanted + " is paired");
            manager.stop();
        }
        return 0;
    }

    static int Fail(string reason)
    {
        Console.Error.WriteLine(reason);
        return 1;
    }
}
