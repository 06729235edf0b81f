using System;
using System.Linq;
using System.Threading;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>The link as a whole: a peer, a surface of the host, and a virtual phone.</summary>
    public sealed class HidInputClientTests : IDisposable
    {
        private const int AlreadyStarted = 21125;
        private const int PatienceMs = 20000;

        private readonly FakeSurface surface = new FakeSurface();
        private readonly BluetoothPeer peer = VirtualPhone.NewPeer();
        private readonly HidInputClient client = new HidInputClient(new KVStore());
        private int connected;

        public HidInputClientTests()
        {
            client.setInputContext(surface);
            client.onConnected.connect(() => Interlocked.Increment(ref connected)).Dispose();
        }

        public void Dispose()
        {
            client.Dispose();
            surface.Dispose();
            peer.Dispose();
        }

        private sealed class FakeService : IBluetoothService
        {
            public string Connected { get; private set; }

            public override void connect(BluetoothPeer to, ErrorCodeCallback completion)
            {
                using (CMacAddress address = to.address())
                    Connected = address.getStdStringAddress();
                using (error_code code = HidErrors.getErrorCode(AlreadyStarted))
                    completion.call(code);
            }

            public override void disconnect(ErrorCodeCallback completion) { }
        }

        public void KeysOverTheSurfaceReachThePhoneAndWakeALinkThatIsPaused()
        {
            using (var phone = new VirtualPhone())
            {
                Assert.Equal(0, Code(client.connect));
                Assert.Equal(AlreadyStarted, Code(client.connect));
                surface.TypeA();
                phone.WaitForLine("\"typed\":\"a\"");
                client.setIdleTimeout(60000);
                client.pauseConnection();
                phone.WaitForLine("\"interrupt\"", "\"disconnected\"");
                surface.onKeyDown.call(0x42, 48, 1);
                phone.WaitForLine("\"typed\":\"b\"");
                client.pauseConnection();
                client.resumeConnection();
                Await("connected three times", () => Volatile.Read(ref connected) == 3);
                Disconnect();
                phone.WaitForLine("\"control\"", "\"disconnected\"");
            }
        }

        public void CompletionsMayBeLeftOutAndPeersMayNot()
        {
            client.forceDisconnect(null);
            Assert.Equal(0, Code((_, done) => client.forceDisconnect(done)));
            client.disconnect(null);
            Disconnect();
            Assert.NullArgument("orbelantine::BluetoothPeer const & reference is null", () => client.connect(null, null));
        }

        public void NativeCodeCallsAServiceOfTheHost()
        {
            using (var service = new FakeService())
            {
                var lost = new Recorder();
                lost.ConnectTo(service.onDisconnected).Dispose();
                IntPtr handle = Raw.Handle<IBluetoothService>(service);
                Raw.Call("bluetooth", "IBluetoothService_connect", handle, Raw.Handle(peer), IntPtr.Zero);
                Assert.Equal(VirtualPhone.Address, service.Connected);
                Assert.Equal(AlreadyStarted, Code((to, done) =>
                    Raw.Call("bluetooth", "IBluetoothService_connect", handle, Raw.Handle(to), Raw.Handle(done))));
                Assert.Equal(0, Code((_, done) => service.forceDisconnect(done)));
                using (error_code code = HidErrors.getErrorCode(AlreadyStarted))
                    service.dispatchOnDisconnected(code);
                Assert.Sequence(new[] { AlreadyStarted }, lost.Values);
            }
        }

        private void Disconnect() => Assert.Equal(0, Code((_, done) => client.disconnect(done)));

        // The code with which an operation completes.
        private int Code(Action<BluetoothPeer, ErrorCodeCallback> operation)
        {
            var completed = new Recorder();
            using (var done = new ErrorCodeCallback(completed))
                operation(peer, done);
            Await("a completion", () => completed.Codes.Length == 1);
            return completed.Values.Single();
        }

        private static void Await(string what, Func<bool> condition) =>
            Assert.True(SpinWait.SpinUntil(condition, PatienceMs), "waited in vain for " + what);
    }
}
