using System;
using System.Threading.Tasks;
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

        /// <summary>Returns once what was raised on the surface has gone out.</summary>
        public void Flush()
        {
            Await(client.flush);
        }

        public string Disconnect()
        {
            return Await(client.disconnect);
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
            client.Dispose();
            composite.Dispose();
            Surface.Dispose();
            peer.Dispose();
            configuration.Dispose();
        }

        private void Listen()
        {
            client.onConnected.connect(() => timeline.Add(Timeline.Link, "connected")).Dispose();
            Listen(client.onDisconnected, "lost");
            Listen(client.onEventError, "event error");
            Listen(client.onHidSdpRefresh, "record refreshed");
        }

        private void Listen(SignalErrorCodeCallback signal, string what)
        {
            signal.connect(code => timeline.Add(Timeline.Link, code.value() == 0 ? what : what + ": " + Explain(code))).Dispose();
        }

        // Completions come from the client's own thread, which goes on before the waiting one does.
        private static string Await(Action<ErrorCodeCallback> operation)
        {
            var completed = new TaskCompletionSource<string>(TaskCreationOptions.RunContinuationsAsynchronously);
            using (ErrorCodeCallback done = ErrorCodeCallback.From(
                       code => completed.SetResult(code.value() == 0 ? null : Explain(code))))
                operation(done);
            return completed.Task.Result;
        }

        /// <summary>Of a code that is no success.</summary>
        public static string Explain(error_code code)
        {
            return "error " + code.value() + ", " + code.message();
        }
    }
}
