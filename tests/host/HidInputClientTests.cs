using System;
using System.Collections.Generic;
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

        private readonly KVStore configuration = new KVStore();
        private readonly FakeSurface surface = new FakeSurface();
        private readonly BluetoothPeer peer;
        private readonly HidInputClient client;
        private readonly Dictionary<string, int> heard = new Dictionary<string, int>();

        public HidInputClientTests()
        {
            using (var address = new CMacAddress(VirtualPhone.Address))
                peer = new BluetoothPeer(address);
            client = new HidInputClient(configuration);
            client.setInputContext(surface);
            Family.Of(typeof(VoidCallback)).Connect(client.onConnected, new HostCallback(() => Hear("connected"))).Dispose();
            Family codes = Family.Of(typeof(ErrorCodeCallback));
            codes.Connect(client.onDisconnected, Counting("disconnected")).Dispose();
            codes.Connect(client.onHidSdpRefresh, Counting("refreshed")).Dispose();
        }

        public void Dispose()
        {
            client.Dispose();
            surface.Dispose();
            peer.Dispose();
            configuration.Dispose();
        }

        [Test]
        public void AKeyOverTheSurfaceReachesThePhone()
        {
            using (var phone = new VirtualPhone())
            {
                Assert.Equal(0, Code(client.connect));
                Assert.Equal(AlreadyStarted, Code(client.connect));
                surface.onKeyDown.call(0x41, 30, 1);
                surface.onKeyUp.call(0x41, 30);
                phone.WaitForLine("\"typed\":\"a\"");
                Assert.Equal(0, Code((_, done) => client.disconnect(done)));
                phone.WaitForLine("\"control\"", "\"disconnected\"");
                Assert.Equal(1, Times("connected"));
            }
        }

        [Test]
        public void ALinkThatIsPausedWakesWithTheNextKey()
        {
            using (var phone = new VirtualPhone())
            {
                Assert.Equal(0, Code(client.connect));
                client.setIdleTimeout(60000);
                client.pauseConnection();
                phone.WaitForLine("\"interrupt\"", "\"disconnected\"");
                surface.onKeyDown.call(0x42, 48, 1);
                phone.WaitForLine("\"typed\":\"b\"");
                client.pauseConnection();
                client.resumeConnection();
                Await("connected", 3);
                Assert.Equal(0, Code((_, done) => client.disconnect(done)));
            }
        }

        [Test]
        public void ARecordRefreshSucceedsWithoutAPhoneAndSaysHowItWent()
        {
            using (var folder = new TestFolder())
            {
                VirtualPhone.SetDevices(folder.Path);
                Assert.Equal(-1, Code(client.connect));
                Assert.Equal(0, Code((_, done) => client.disconnect(done)));
                client.setHidRemoteSdpRefresh(true);
                Assert.Equal(0, Code(client.connect));
                Assert.Equal(1, Times("refreshed"));
                Await("disconnected", 2);
                Assert.Equal(0, Code((_, done) => client.disconnect(done)));
            }
        }

        [Test]
        public void CompletionsMayBeLeftOutAndPeersMayNot()
        {
            client.forceDisconnect(null);
            Assert.Equal(0, Code((_, done) => client.forceDisconnect(done)));
            client.disconnect(null);
            Assert.Equal(0, Code((_, done) => client.disconnect(done)));
            Assert.NullArgument("orbelantine::BluetoothPeer const & reference is null", () => client.connect(null, null));
        }

        [Test]
        public void AHostsServiceIsCalledThroughItsBase()
        {
            using (var service = new FakeService())
            {
                int disconnected = 0;
                Family.Of(typeof(ErrorCodeCallback)).Connect(service.onDisconnected, Counting("lost", () => ++disconnected)).Dispose();
                service.connect(peer, null);
                Assert.Equal(VirtualPhone.Address, service.Connected);
                Assert.Equal(0, Code((_, done) => service.forceDisconnect(done)));
                using (error_code code = HidErrors.getErrorCode(AlreadyStarted))
                    service.dispatchOnDisconnected(code);
                Assert.Equal(1, disconnected, "signals");
                service.onDisconnected.disconnect_all_slots();
            }
        }

        [Test]
        public void APeerTellsWhatItIs()
        {
            using (var address = new CMacAddress(0xA1B2C3D4E5F6))
            using (var phone = new BluetoothPeer(address, "Mein Telefon \U0001F4F1", 0x5A020C, false))
            {
                Assert.Equal("A1:B2:C3:D4:E5:F6", phone.address().getStdStringAddress());
                Assert.Equal(3, phone.deviceType());
                phone.update("anders", 0x100, true);
                Assert.Equal("anders 256 True 2", phone.name() + " " + phone.deviceClass() + " " + phone.isPaired() + " " + phone.deviceType());
                Assert.Equal(false, phone.isStale());
                phone.markStale();
                Assert.Equal(true, phone.isStale());
                phone.touch();
                Assert.Equal(false, phone.isStale());
            }
            Assert.Equal("nur ein Name", new BluetoothPeer("nur ein Name").name());
        }

        [Test]
        public void AVectorOfPeersSharesThem()
        {
            using (var peers = new BluetoothPeerVector(new[] { peer, new BluetoothPeer("zwei") }))
            {
                peers[0].update("eins", 0, true);
                Assert.Equal("eins", peer.name());
                peers.Reverse();
                Assert.Sequence(new[] { "zwei", "eins" }, peers.Select(each => each.name()));
                Assert.OutOfRange("index", () => peers[2].name());
                Assert.NullArgument("std::vector< boost::shared_ptr< orbelantine::BluetoothPeer > > const & type is null", () => peers.AddRange(null));
            }
        }

        // The code with which an operation completes.
        private int Code(Action<BluetoothPeer, ErrorCodeCallback> operation)
        {
            int? code = null;
            using (var done = new ManualResetEvent(false))
            {
                var callback = new HostCallback(arguments =>
                {
                    using (var given = (error_code)arguments[0])
                        code = given.value();
                    done.Set();
                    return false;
                });
                using (IDisposable function = Family.Of(typeof(ErrorCodeCallback)).NewFunction(callback))
                    operation(peer, (ErrorCodeCallback)function);
                Assert.True(done.WaitOne(PatienceMs), "no completion");
            }
            return code.Value;
        }

        private HostCallback Counting(string what, Action also = null)
        {
            return new HostCallback(arguments =>
            {
                ((error_code)arguments[0]).Dispose();
                Hear(what);
                also?.Invoke();
                return false;
            });
        }

        private void Hear(string what)
        {
            lock (heard)
                heard[what] = Times(what) + 1;
        }

        private void Await(string what, int times)
        {
            Assert.True(SpinWait.SpinUntil(() => Times(what) == times, PatienceMs), "not " + times + " times " + what);
        }

        private int Times(string what)
        {
            lock (heard)
                return heard.TryGetValue(what, out int times) ? times : 0;
        }

        private sealed class FakeService : IBluetoothService
        {
            public string Connected { get; private set; }

            public override void connect(BluetoothPeer to, ErrorCodeCallback completion)
            {
                using (CMacAddress address = to.address())
                    Connected = address.getStdStringAddress();
            }

            public override void disconnect(ErrorCodeCallback completion) { }
        }
    }
}
