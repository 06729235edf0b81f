using System;
using System.Linq;
using System.Threading;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>The device client and a virtual phone.</summary>
    public sealed class DeviceTests : IDisposable
    {
        private const int InvalidState = 21120;

        private readonly KVStore configuration = new KVStore();
        private readonly HIDDeviceClient device = new HIDDeviceClient();
        private readonly HIDReportProvider provider;
        private readonly Recorder disconnected = new Recorder();

        public DeviceTests()
        {
            provider = new HIDReportProvider(configuration);
            provider.setDevice(device);
            disconnected.ConnectTo(device.onDisconnected).Dispose();
        }

        public void Dispose()
        {
            provider.Dispose();
            device.Dispose();
            configuration.Dispose();
        }

        [Test]
        public void ADeviceThatIsNotConnectedRefusesToUnplugAndTakesTheRest()
        {
            using (error_code code = device.virtualCableUnplug())
                Assert.Equal(InvalidState, code.value());
            device.disconnect();
            device.forceDisconnect();
            device.sendReport(IntPtr.Zero, 0);
            Assert.Equal(false, device.isConnected());
        }

        [Test]
        public void ConnectingGreetsThePhoneTwiceAndOnlyOnce()
        {
            using (var phone = new VirtualPhone())
            {
                Assert.Equal(0, Connect());
                Assert.Equal(InvalidState, Connect());
                Assert.Equal(true, device.isConnected());
                SendAndWait(phone);
                Assert.Equal(2, phone.Lines().Count(line => line.Contains("\"greeting\"")));
                device.disconnect();
                Assert.Equal(false, device.isConnected());
                phone.WaitForLine("\"control\"", "\"disconnected\"");
            }
        }

        [Test]
        public void AnotherAddressIsNotThere()
        {
            using (new VirtualPhone())
                foreach (string address in new[] { "00:11:22:33:44:56", "00:11:22:33:44", null })
                    Assert.Equal(-1, Connect(address), address);
        }

        [Test]
        public void ARefusalGivesItsCodeAndLeavesNothingConnected()
        {
            ExpectRefusal("--refuse control", -1);
            ExpectRefusal("--refuse interrupt", -1);
            ExpectRefusal("--driver-version 3", 136);
            ExpectRefusal("--driver-version 5", 136);
        }

        [Test]
        public void ThePhoneGetsKeysAndClicks()
        {
            using (var phone = new VirtualPhone())
            {
                Assert.Equal(0, Connect());
                provider.sendKey(42, true);
                provider.sendKey(30, true);
                provider.sendMouseMove(-3, 300);
                provider.sendMouseLeftClick(true);
                phone.WaitForLine("\"typed\":\"A\"", "\"modifiers\":2");
                phone.WaitForLine("\"mouse\"", "\"dx\":-3", "\"dy\":300", "\"buttons\":0");
                phone.WaitForLine("\"mouse\"", "\"dx\":0", "\"dy\":0", "\"buttons\":1");
            }
        }

        [Test]
        public void UnpluggingDisconnectsAndTellsTheHost()
        {
            using (var phone = new VirtualPhone())
            {
                Assert.Equal(0, Connect());
                using (error_code code = device.virtualCableUnplug())
                    Assert.Equal(0, code.value());
                Assert.Sequence(new[] { 0 }, disconnected.Values);
                Assert.Equal(false, device.isConnected());
                phone.WaitForLine("\"unplug\"");
                Assert.Equal(0, Connect(), "connecting again");
            }
        }

        [Test]
        public void ALinkThatIsGoneIsNoticedAtTheNextReportAndStaysConnected()
        {
            foreach (bool vanishes in new[] { true, false })
                using (var phone = new VirtualPhone())
                {
                    int before = disconnected.Codes.Length;
                    Assert.Equal(0, Connect());
                    if (vanishes)
                        phone.Vanish();
                    else
                        device.forceDisconnect();
                    provider.sendMouseMove(1, 1);
                    Assert.Sequence(new[] { 0 }, disconnected.Values.Skip(before), "vanishes " + vanishes);
                    Assert.Equal(true, device.isConnected());
                    device.disconnect();
                }
        }

        [Test]
        public void ACallbackMayCallTheDeviceThatCallsIt()
        {
            using (var phone = new VirtualPhone())
            {
                new Recorder(code => device.disconnect()).ConnectTo(device.onDisconnected).Dispose();
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

        // Reports arrive in order: what was sent before has arrived with this one.
        private void SendAndWait(VirtualPhone phone)
        {
            provider.sendMouseMove(12345, -12345);
            phone.WaitForLine("\"dx\":12345");
        }

        private int Connect(string address = VirtualPhone.Address)
        {
            using (error_code code = device.connect(address))
                return code.value();
        }

        private void ExpectRefusal(string options, int code)
        {
            using (new VirtualPhone(options))
            {
                Assert.Equal(code, Connect(), options);
                Assert.Equal(false, device.isConnected(), options);
            }
        }
    }
}
