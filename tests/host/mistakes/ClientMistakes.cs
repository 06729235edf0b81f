using System;
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
        private sealed class FailingSurface : FakeSurface
        {
            public override int getSystemMouseSpeed()
            {
                throw new InvalidOperationException("no speed");
            }
        }

        public static void AClientMayEndInItsOwnCompletion() =>
            WithClient(client =>
            {
                var ended = new ManualResetEventSlim();
                using (BluetoothPeer peer = NewPeer())
                    client.connect(peer, ErrorCodeCallback.From(code => { client.Dispose(); ended.Set(); }));
                Await(ended);
            });

        public static void AClientMayEndInItsOwnSignal()
        {
            using (new VirtualPhone())
                WithClient(client =>
                {
                    var ended = new ManualResetEventSlim();
                    client.onConnected.connect(() => { client.Dispose(); ended.Set(); }).Dispose();
                    using (BluetoothPeer peer = NewPeer())
                        client.connect(peer, null);
                    Await(ended);
                });
        }

        public static void AClientMayEndAfterAnAwaitOfItsCompletion() =>
            WithClient(client => Task.Run(async () =>
            {
                await Connect(client);
                client.Dispose();
            }).Wait());

        public static void AClientThatIsStillUsedCompletesEverythingOnce()
        {
            using (new VirtualPhone())
                WithClient(client =>
                {
                    var tasks = new Task<int>[20];
                    for (int i = 0; i < tasks.Length; ++i)
                        tasks[i] = Connect(client);
                    client.Dispose();
                    Task.WaitAll(tasks);
                });
        }

        public static void AConnectThatHangsInTheDriverEndsWithItsClient()
        {
            using (new VirtualPhone("--late 60000"))
                WithClient(client =>
                {
                    Task<int> connected = Connect(client);
                    Assert.True(!connected.Wait(500), "nothing hangs");
                    client.Dispose();
                    Assert.True(connected.Wait(0) && connected.Result != 0, "not completed, or with success");
                });
        }

        public static void AConnectThatHangsInTheDriverIsBrokenByForce()
        {
            using (new VirtualPhone("--late 60000"))
                WithClient(client =>
                {
                    Task<int> connected = Connect(client);
                    Assert.True(!connected.Wait(500), "nothing hangs");
                    client.forceDisconnect(null);
                    Assert.True(connected.Wait(4000), "not completed");
                    Assert.True(connected.Result != 0, "success");
                });
        }

        public static void AClientLeftConnectedLetsTheProcessEnd()
        {
            using (new VirtualPhone())
            {
                var client = new HidInputClient(new KVStore());
                client.setInputContext(new FakeSurface());
                Assert.Equal(0, Connect(client).Result);
            }
        }

        public static void AClientLeftToTheCollectorEnds()
        {
            using (new VirtualPhone())
            {
                Forget();
                Collector.Run();
            }
        }

        public static void AWrongSettingFailsTheConnection()
        {
            using (new VirtualPhone())
            using (var configuration = new KVStore())
            {
                configuration.setStringAt("osVersion", "x.1");
                using (var client = new HidInputClient(configuration))
                {
                    client.setInputContext(new FakeSurface());
                    Connect(client).Wait();
                    Connect(client).Wait();
                }
            }
        }

        public static void ASurfaceThatFailsToAnswerKeepsNobodyWaiting()
        {
            HostCallbacks.UnhandledException += (sender, told) => { };
            using (new VirtualPhone())
                WithClient(client =>
                {
                    client.setInputContext(new FailingSurface());
                    Connect(client).Wait();
                });
        }

        public static void ConnectingWithoutASurfaceOrAPhoneIsAnswered()
        {
            using (var configuration = new KVStore())
            using (var client = new HidInputClient(configuration))
            {
                Assert.True(Connect(client).Result != 0, "connected to nothing");
                client.setInputContext(null);
                Assert.True(Connect(client).Result != 0, "connected to nothing");
            }
        }

        public static void ImpossibleScreensAreTaken()
        {
            using (var phone = new VirtualPhone())
            using (var surface = new FakeSurface())
                WithClient(client =>
                {
                    client.setInputContext(surface);
                    Assert.Equal(0, Connect(client).Result);
                    foreach (int size in new[] { 50000000, -1, 0, int.MinValue })
                    {
                        surface.onLogicalDimensionsChanged.call(size, size, 1e300, -30000000);
                        surface.onRotationChanged.call(size);
                        surface.onMouseClickDown.call(IInputContext.eMouseButton.MouseButtonLeft, size, 5);
                        surface.onMouseClickUp.call((IInputContext.eMouseButton)77, 5, size);
                        surface.onRelativeMouseWheel.call(size, size, size);
                    }
                    surface.onKeyDown.call(0x41, 30, 1);
                    surface.onKeyUp.call(0x41, 30);
                    phone.WaitForLine("\"typed\":\"a\"");
                    client.Dispose();
                });
        }

        public static void AFlushIsAnsweredWithALinkAndWithout() =>
            WithClient(client =>
            {
                Flush(client).Wait();
                client.flush(null);
                using (var phone = new VirtualPhone())
                using (var surface = new FakeSurface())
                {
                    client.setInputContext(surface);
                    Assert.Equal(0, Connect(client).Result);
                    surface.onKeyDown.call(0x41, 30, 1);
                    surface.onKeyUp.call(0x41, 30);
                    Assert.Equal(0, Flush(client).Result);
                    client.Dispose();
                    phone.WaitForLine("\"typed\":\"a\"");
                }
            });

        public static void ADeviceMayEndInItsOwnSignal()
        {
            using (var phone = new VirtualPhone())
            {
                var device = new HIDDeviceClient();
                device.onDisconnected.connect(code => device.Dispose()).Dispose();
                using (var configuration = new KVStore())
                using (var provider = new HIDReportProvider(configuration))
                {
                    provider.setDevice(device);
                    device.connect(VirtualPhone.Address).Dispose();
                    phone.Vanish();
                    provider.sendMouseMove(1, 1);
                    provider.sendMouseMove(1, 1);
                }
            }
        }

        public static void AReportOfNothingIsNotSent()
        {
            using (var phone = new VirtualPhone())
            using (var device = new HIDDeviceClient())
            {
                device.connect(VirtualPhone.Address).Dispose();
                Assert.Throws<ArgumentNullException>(() => device.sendReport(IntPtr.Zero, 5));
                device.sendReport(IntPtr.Zero, 0);
            }
        }

        private static void WithClient(Action<HidInputClient> action)
        {
            using (var configuration = new KVStore())
            using (var client = new HidInputClient(configuration))
                action(client);
        }

        private static void Forget()
        {
            var client = new HidInputClient(new KVStore());
            client.setInputContext(new FakeSurface());
            Assert.Equal(0, Connect(client).Result);
        }

        private static Task<int> Connect(HidInputClient client)
        {
            using (BluetoothPeer peer = NewPeer())
                return Code(done => client.connect(peer, done));
        }

        private static Task<int> Flush(HidInputClient client) => Code(client.flush);

        // The code of the one completion. Continuations run on the thread that completes.
        private static Task<int> Code(Action<ErrorCodeCallback> operation)
        {
            var completed = new TaskCompletionSource<int>();
            using (ErrorCodeCallback done = ErrorCodeCallback.From(code => completed.SetResult(code.value())))
                operation(done);
            return completed.Task;
        }

        private static BluetoothPeer NewPeer()
        {
            using (var address = new CMacAddress(VirtualPhone.Address))
                return new BluetoothPeer(address);
        }

        private static void Await(ManualResetEventSlim happened) => Assert.True(happened.Wait(4000), "waited in vain");
    }
}
