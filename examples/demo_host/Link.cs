using System;
using System.Threading;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.DemoHost
{
    /// <summary>The connection to the phone, and the surface whose input goes there.</summary>
    public sealed class Link : IDisposable
    {
        private readonly KVStore configuration = new KVStore();
        private readonly InputContextComposite composite = new InputContextComposite();
        private readonly BluetoothPeer peer;
        private readonly Timeline timeline;
        private readonly HidInputClient client;

        public Link(string address, Timeline timeline)
        {
            this.timeline = timeline;
            using (var parsed = new CMacAddress(address))
                peer = new BluetoothPeer(parsed);
            configuration.setStringAt("hint", "android");
            composite.setMainInputContext(Surface);
            client = new HidInputClient(configuration);
            client.setInputContext(composite);
            Listen();
        }

        public Surface Surface { get; } = new Surface();

        /// <summary>Null, or why there is no connection.</summary>
        public string Connect()
        {
            return Await(done => client.connect(peer, done));
        }

        public string Disconnect()
        {
            return Await(done => client.disconnect(done));
        }

        /// <summary>Has the phone read the computer's service record again.</summary>
        public string Refresh()
        {
            client.setHidRemoteSdpRefresh(true);
            Disconnect();
            return Connect();
        }

        public void SetIdleTimeout(int milliseconds)
        {
            client.setIdleTimeout((ulong)milliseconds);
        }

        public void Sleep()
        {
            client.pauseConnection();
            timeline.Add(Timeline.Link, "put to sleep");
        }

        public void Wake()
        {
            client.resumeConnection();
        }

        public void Dispose()
        {
            client.onConnected.disconnect_all_slots();
            client.onDisconnected.disconnect_all_slots();
            client.onEventError.disconnect_all_slots();
            client.onHidSdpRefresh.disconnect_all_slots();
            client.Dispose();
            composite.Dispose();
            Surface.Dispose();
            peer.Dispose();
            configuration.Dispose();
        }

        private void Listen()
        {
            using (VoidCallback function = OnEvent.Function(() => timeline.Add(Timeline.Link, "connected")))
                client.onConnected.connect(function).Dispose();
            Listen(client.onDisconnected, "lost");
            Listen(client.onEventError, "event error");
            Listen(client.onHidSdpRefresh, "record refreshed");
        }

        private void Listen(SignalErrorCodeCallback signal, string what)
        {
            using (ErrorCodeCallback function = OnCode.Function((value, text) =>
                       timeline.Add(Timeline.Link, value == 0 ? what : what + ": " + Explain(value, text))))
                signal.connect(function).Dispose();
        }

        // Completions come from the client's own thread.
        private static string Await(Action<ErrorCodeCallback> operation)
        {
            string failure = null;
            using (var done = new ManualResetEvent(false))
            {
                using (ErrorCodeCallback function = OnCode.Function((value, text) =>
                       {
                           failure = value == 0 ? null : Explain(value, text);
                           done.Set();
                       }))
                    operation(function);
                done.WaitOne();
            }
            return failure;
        }

        private static string Explain(int value, string text)
        {
            return "error " + value + ", " + text;
        }
    }
}
