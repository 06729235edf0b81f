using System;
using System.Linq;
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
    }
}
