using System;
using System.Linq;
using System.Threading;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>The device client, with nothing to connect to and with a virtual phone.</summary>
    public sealed class DeviceTests : IDisposable
    {
        private const int InvalidState = 21120;
        private const int TimeoutReached = 21122;
        private const byte KeyA = 30;

        private readonly KVStore configuration = new KVStore();
        private readonly HIDDeviceClient device = new HIDDeviceClient();
        private readonly HIDReportProvider provider;

        public DeviceTests()
        {
            provider = new HIDReportProvider(configuration);
            provider.setDevice(device);
        }

        public void Dispose()
        {
            provider.Dispose();
            device.Dispose();
            configuration.Dispose();
        }

        [Test]
        public void WithoutAFolderOfDevicesThereIsNothingToConnectTo()
        {
            using (var folder = new TestFolder())
            {
                VirtualPhone.SetDevices(folder.File("none"));
                Assert.Equal(-1, Connect());
            }
            Assert.Equal(false, device.isConnected());
        }

        [Test]
        public void WithoutADeviceThereIsNothingToConnectTo()
        {
            using (var folder = new TestFolder())
            {
                VirtualPhone.SetDevices(folder.Path);
                Assert.Equal(-1, Connect());
            }
        }

        [Test]
        public void ADeviceThatIsNotConnectedRefusesToUnplug()
        {
            using (error_code code = device.virtualCableUnplug())
            {
                Assert.Equal(InvalidState, code.value());
                Assert.Equal("'Category: struct orbelantine::HidErrors, Message: Error code - InvalidState'", code.message());
            }
        }

        [Test]
        public void DisconnectingWhatIsNotConnectedIsHarmless()
        {
            device.disconnect();
            device.forceDisconnect();
            device.forceDisconnect();
            device.sendReport(IntPtr.Zero, 0);
            Assert.Equal(false, device.isConnected());
        }

        [Test]
        public void ConnectingGreetsThePhoneTwice()
        {
            using (var phone = new VirtualPhone())
            {
                Assert.Equal(0, Connect());
                Assert.Equal(true, device.isConnected());
                phone.WaitForLine("\"interrupt\"", "\"connected\"");
                SendAndWait(phone);
                Assert.Equal(2, phone.Lines().Count(line => line.Contains("\"greeting\"")));
                device.disconnect();
                Assert.Equal(false, device.isConnected());
                phone.WaitForLine("\"control\"", "\"disconnected\"");
            }
        }

        [Test]
        public void ConnectingTwiceLeavesTheChannelsUp()
        {
            using (var phone = new VirtualPhone())
            {
                Assert.Equal(0, Connect());
                Assert.Equal(InvalidState, Connect());
                SendAndWait(phone);
            }
        }

        [Test]
        public void AnotherAddressIsNotThere()
        {
            using (new VirtualPhone())
            {
                Assert.Equal(-1, Connect("00:11:22:33:44:56"));
                Assert.Equal(-1, Connect("00:11:22:33:44"));
                Assert.Equal(-1, Connect(null));
                Assert.Equal(0, Connect());
            }
        }

        [Test]
        public void ARefusedChannelLeavesNothingConnected()
        {
            foreach (string channel in new[] { "control", "interrupt" })
                using (new VirtualPhone("--refuse " + channel))
                {
                    Assert.Equal(-1, Connect(), channel);
                    Assert.Equal(false, device.isConnected(), channel);
                }
        }

        [Test]
        public void AnotherVersionOfTheDriverIsRefused()
        {
            foreach (int version in new[] { 3, 5 })
                using (new VirtualPhone("--version " + version))
                    Assert.Equal(136, Connect(), "version " + version);
        }

        [Test]
        public void ThePhoneGetsKeysAndClicks()
        {
            using (var phone = new VirtualPhone())
            {
                Assert.Equal(0, Connect());
                provider.sendKey(42, true);
                provider.sendKey(KeyA, true);
                provider.sendKey(KeyA, false);
                provider.sendKey(42, false);
                provider.sendMouseMove(-3, 300);
                provider.sendMouseLeftClick(true);
                provider.sendMouseLeftClick(false);
                phone.WaitForLine("\"typed\":\"A\"", "\"modifiers\":2");
                phone.WaitForLine("\"mouse\"", "\"dx\":-3", "\"dy\":300", "\"buttons\":0");
                phone.WaitForLine("\"mouse\"", "\"dx\":0", "\"dy\":0", "\"buttons\":1");
            }
        }

        [Test]
        public void AResetStateForgetsButtonsAndSendsNothing()
        {
            using (var phone = new VirtualPhone())
            {
                Assert.Equal(0, Connect());
                provider.sendMouseLeftClick(true);
                provider.resetState();
                provider.sendMouseRightClick(true);
                phone.WaitForLine("\"mouse\"", "\"buttons\":2");
                Assert.Equal(2, phone.Lines().Count(line => line.Contains("\"mouse\"")), "reports");
            }
        }

        [Test]
        public void UnpluggingDisconnectsAndTellsTheHost()
        {
            using (var phone = new VirtualPhone())
            {
                Recorder recorder = Listen();
                Assert.Equal(0, Connect());
                using (error_code code = device.virtualCableUnplug())
                    Assert.Equal(0, code.value());
                Assert.Sequence(new[] { 0 }, recorder.Values);
                Assert.Equal(false, device.isConnected());
                phone.WaitForLine("\"unplug\"");
                Assert.Equal(0, Connect(), "connecting again");
            }
        }

        [Test]
        public void APhoneThatKeepsItsChannelsEndsTheWaitForIt()
        {
            using (new VirtualPhone("--keep-after-unplug"))
            {
                Assert.Equal(0, Connect());
                using (error_code code = device.virtualCableUnplug())
                    Assert.Equal(TimeoutReached, code.value());
                Assert.Equal(true, device.isConnected());
            }
        }

        [Test]
        public void APhoneThatVanishesIsNoticedAtTheNextReport()
        {
            using (var phone = new VirtualPhone())
            {
                Recorder recorder = Listen();
                Assert.Equal(0, Connect());
                SendAndWait(phone);
                phone.Vanish();
                provider.sendMouseMove(1, 1);
                Assert.Sequence(new[] { 0 }, recorder.Values);
                Assert.Equal(true, device.isConnected());
            }
        }

        [Test]
        public void APhoneThatVanishesInTheMiddleEndsNoCall()
        {
            using (var phone = new VirtualPhone("--vanish-after 100"))
            {
                Recorder recorder = Listen();
                Assert.Equal(0, Connect());
                for (int i = 0; i < 200; ++i)
                    provider.sendMouseMove(1, 1);
                phone.WaitForExit();
                provider.sendMouseMove(1, 1);
                Assert.True(recorder.Codes.Count > 0, "not told");
                device.disconnect();
                Assert.Equal(-1, Connect());
            }
        }

        [Test]
        public void AForcedDisconnectIsNoticedAtTheNextReport()
        {
            using (new VirtualPhone())
            {
                Recorder recorder = Listen();
                Assert.Equal(0, Connect());
                device.forceDisconnect();
                device.forceDisconnect();
                Assert.Equal(true, device.isConnected());
                provider.sendMouseMove(1, 1);
                Assert.Sequence(new[] { 0 }, recorder.Values);
            }
        }

        [Test]
        public void ACallbackMayCallTheDeviceThatCallsIt()
        {
            using (var phone = new VirtualPhone())
            {
                Listen(code => device.disconnect());
                Assert.Equal(0, Connect());
                phone.Vanish();
                provider.sendMouseMove(1, 1);
                Assert.Equal(false, device.isConnected());
            }
        }

        [Test]
        public void ThreadsMayShareADevice()
        {
            using (var phone = new VirtualPhone())
            {
                Assert.Equal(0, Connect());
                var threads = Enumerable.Range(0, 4).Select(i => new Thread(SendMany)).ToList();
                threads.ForEach(thread => thread.Start());
                threads.ForEach(thread => thread.Join());
                SendAndWait(phone);
                Assert.Equal(400, phone.Lines().Count(line => line.Contains("\"dx\":1,\"dy\":1")), "reports");
            }
        }

        private void SendMany()
        {
            using (var own = new HIDReportProvider(configuration))
            {
                own.setDevice(device);
                for (int i = 0; i < 100; ++i)
                    own.sendMouseMove(1, 1);
            }
        }

        private int Connect(string address = VirtualPhone.Address)
        {
            using (error_code code = device.connect(address))
                return code.value();
        }

        private Recorder Listen(Action<error_code> action = null)
        {
            var recorder = new Recorder(action);
            using (var function = new ErrorCodeCallback(recorder))
                device.onDisconnected.connect(function).Dispose();
            return recorder;
        }

        // Reports arrive in order: what was sent before has arrived with this one.
        private void SendAndWait(VirtualPhone phone)
        {
            provider.sendMouseMove(12345, -12345);
            phone.WaitForLine("\"dx\":12345");
        }
    }
}
