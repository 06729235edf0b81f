using System;
using System.Linq;
using System.Runtime.CompilerServices;
using System.Threading;
using System.Threading.Tasks;
using Orbelantine.Swig;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>The link, used as it should not be.</summary>
    public static class ClientMistakes
    {
        public static HidInputClient Left { get; private set; }

        public static void AClientMayEndInItsOwnCompletion()
        {
            var client = new HidInputClient(new KVStore());
            ExpectEnd(client, end => client.connect(VirtualPhone.NewPeer(), ErrorCodeCallback.From(code => end())));
        }

        public static void AClientMayEndInItsOwnSignal() => WithPhone((phone, client, surface) => ExpectEnd(client, end =>
        {
            client.onConnected.connect(end).Dispose();
            client.connect(VirtualPhone.NewPeer(), null);
        }));

        public static void AClientMayEndAfterAnAwaitOfItsCompletion()
        {
            var client = new HidInputClient(new KVStore());
            Task.Run(async () =>
            {
                await Connect(client);
                client.Dispose();
            }).Wait();
        }

        public static void AClientThatIsStillUsedCompletesEverythingOnce() => WithPhone((phone, client, surface) =>
        {
            Task<int>[] tasks = Enumerable.Range(0, 20).Select(i => Connect(client)).ToArray();
            client.Dispose();
            Task.WaitAll(tasks);
        });

        public static void AConnectThatHangsInTheDriverEndsWithItsClient() => Hang((client, connected) =>
        {
            client.Dispose();
            Assert.True(connected.Wait(0), "not completed");
        });

        public static void AConnectThatHangsInTheDriverIsBrokenByForce() => Hang((client, connected) =>
        {
            client.forceDisconnect(null);
            Assert.True(connected.Wait(4000), "not completed");
        });

        public static void AClientLeftConnectedLetsTheProcessEnd()
        {
            using (new VirtualPhone())
                Left = NewConnected();
        }

        public static void AClientLeftToTheCollectorEnds()
        {
            using (new VirtualPhone())
            {
                NewConnected();
                Collector.Run();
            }
        }

        public static void AWrongSettingFailsTheConnection()
        {
            var configuration = new KVStore();
            configuration.setStringAt("osVersion", "x.1");
            using (new VirtualPhone())
            using (var client = new HidInputClient(configuration))
            {
                client.setInputContext(new FakeSurface());
                Assert.True(Connect(client).Result != 0 && Connect(client).Result != 0, "connected");
            }
        }

        public static void ASurfaceThatFailsToAnswerKeepsNobodyWaiting() => WithPhone((phone, client, surface) =>
        {
            HostCallbacks.UnhandledException += (sender, told) => { };
            surface.Failure = new InvalidOperationException("no speed");
            Connect(client).Wait();
        });

        public static void ConnectingWithoutASurfaceOrAPhoneIsAnswered()
        {
            using (var client = new HidInputClient(new KVStore()))
            {
                Assert.True(Connect(client).Result != 0, "connected to nothing");
                client.setInputContext(null);
                Assert.True(Connect(client).Result != 0, "connected to nothing");
            }
        }

        public static void ImpossibleScreensAreTaken() => WithPhone((phone, client, surface) =>
        {
            Assert.Equal(0, Connect(client).Result);
            foreach (int size in new[] { 50000000, -1, 0, int.MinValue })
            {
                surface.onLogicalDimensionsChanged.call(size, size, 1e300, -30000000);
                surface.onRotationChanged.call(size);
                surface.onMouseClickDown.call(IInputContext.eMouseButton.MouseButtonLeft, size, 5);
                surface.onMouseClickUp.call((IInputContext.eMouseButton)77, 5, size);
                surface.onRelativeMouseWheel.call(size, size, size);
            }
            surface.TypeA();
            phone.WaitForLine("\"typed\":\"a\"");
        });

        public static void AFlushIsAnsweredWithALinkAndWithout() => WithPhone((phone, client, surface) =>
        {
            Code(client.flush).Wait();
            client.flush(null);
            Assert.Equal(0, Connect(client).Result);
            surface.TypeA();
            Assert.Equal(0, Code(client.flush).Result);
            client.Dispose();
            phone.WaitForLine("\"typed\":\"a\"");
        });

        public static void ADeviceMayEndInItsOwnSignal()
        {
            var device = new HIDDeviceClient();
            device.onDisconnected.connect(code => device.Dispose()).Dispose();
            using (var phone = new VirtualPhone())
            using (var provider = new HIDReportProvider(new KVStore()))
            {
                provider.setDevice(device);
                device.connect(VirtualPhone.Address).Dispose();
                phone.Vanish();
                provider.sendMouseMove(1, 1);
                provider.sendMouseMove(1, 1);
            }
        }

        public static void AReportOfNothingIsNotSent()
        {
            using (new VirtualPhone())
            using (var device = new HIDDeviceClient())
            {
                device.connect(VirtualPhone.Address).Dispose();
                Assert.Throws<ArgumentNullException>(() => device.sendReport(IntPtr.Zero, 5));
                device.sendReport(IntPtr.Zero, 0);
            }
        }

        private static void WithPhone(Action<VirtualPhone, HidInputClient, FakeSurface> action)
        {
            using (var phone = new VirtualPhone())
            using (var surface = new FakeSurface())
            using (var client = new HidInputClient(new KVStore()))
            {
                client.setInputContext(surface);
                action(phone, client, surface);
            }
        }

        // `breakOff` is to complete a connect that hangs.
        private static void Hang(Action<HidInputClient, Task<int>> breakOff)
        {
            using (new VirtualPhone("--late 60000"))
            using (var surface = new FakeSurface())
            using (var client = new HidInputClient(new KVStore()))
            {
                client.setInputContext(surface);
                Task<int> connected = Connect(client);
                Assert.True(!connected.Wait(500), "nothing hangs");
                breakOff(client, connected);
                Assert.True(connected.Result != 0, "success");
            }
        }

        // Ends the client in a call that the operation causes.
        private static void ExpectEnd(HidInputClient client, Action<Action> operation)
        {
            var ended = new ManualResetEventSlim();
            operation(() => { client.Dispose(); ended.Set(); });
            Assert.True(ended.Wait(4000), "waited in vain");
        }

        [MethodImpl(MethodImplOptions.NoInlining)]
        private static HidInputClient NewConnected()
        {
            var client = new HidInputClient(new KVStore());
            client.setInputContext(new FakeSurface());
            Assert.Equal(0, Connect(client).Result);
            return client;
        }

        private static Task<int> Connect(HidInputClient client)
        {
            using (BluetoothPeer peer = VirtualPhone.NewPeer())
                return Code(done => client.connect(peer, done));
        }

        // The code of the one completion. Continuations run on the thread that completes.
        private static Task<int> Code(Action<ErrorCodeCallback> operation)
        {
            var completed = new TaskCompletionSource<int>();
            using (ErrorCodeCallback done = ErrorCodeCallback.From(code => completed.SetResult(code.value())))
                operation(done);
            return completed.Task;
        }
    }
}
