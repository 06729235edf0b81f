using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>The device client and a virtual phone.</summary>
    public sealed class DeviceTests
    {
        private const int InvalidState = 21120;

        public void ThePhoneGetsKeysAndClicksUntilItIsUnplugged()
        {
            using (var phone = new VirtualPhone())
            using (var device = new HIDDeviceClient())
            using (var provider = new HIDReportProvider(new KVStore()))
            {
                var disconnected = new Recorder();
                disconnected.ConnectTo(device.onDisconnected).Dispose();
                provider.setDevice(device);
                Assert.Equal(0, device.connect(VirtualPhone.Address).value());
                Assert.Equal(InvalidState, device.connect(VirtualPhone.Address).value());
                provider.sendKey(42, true);
                provider.sendKey(30, true);
                provider.sendMouseMove(-3, 300);
                provider.sendMouseLeftClick(true);
                phone.WaitForLine("\"typed\":\"A\"", "\"modifiers\":2");
                phone.WaitForLine("\"mouse\"", "\"dx\":-3", "\"dy\":300", "\"buttons\":0");
                phone.WaitForLine("\"mouse\"", "\"dx\":0", "\"dy\":0", "\"buttons\":1");
                Assert.Equal(true, device.isConnected());
                Assert.Equal(0, device.virtualCableUnplug().value());
                phone.WaitForLine("\"unplug\"");
                Assert.Sequence(new[] { 0 }, disconnected.Values);
                Assert.Equal(false, device.isConnected());
            }
        }
    }
}
