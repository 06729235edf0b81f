using System;
using System.Collections.Generic;
using System.Linq;
using System.Runtime.InteropServices;
using Orbelantine.Swig.avstack_base;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>The packer and the report provider, without a device.</summary>
    public sealed class HidTests : IDisposable
    {
        private const byte KeyA = 30;
        private const byte VolumeDown = 174;

        private readonly KVStore configuration = new KVStore();

        public void Dispose()
        {
            configuration.Dispose();
        }

        /// <summary>Takes what a packer hands on.</summary>
        private sealed class ReportTaker : IMediaElement
        {
            public List<byte[]> Reports { get; } = new List<byte[]>();
            public List<uint> Sizes { get; } = new List<uint>();

            public override void onFrame(IMediaBuffer buffer)
            {
                Sizes.Add(buffer.getSize());
                Reports.Add(ReportOf(buffer));
            }

            // The payload begins with a pointer to the report's buffer: its table of functions, type, size,
            // timestamp and bytes.
            private static byte[] ReportOf(IMediaBuffer buffer)
            {
                IntPtr raw = Marshal.ReadIntPtr(buffer.map(0));
                var bytes = new byte[Marshal.ReadInt32(raw, IntPtr.Size + 4)];
                Marshal.Copy(Marshal.ReadIntPtr(raw, IntPtr.Size + 16), bytes, 0, bytes.Length);
                return bytes;
            }
        }

        /// <summary>Takes every report before it is made, as "type: fields".</summary>
        private sealed class InterceptingProvider : HIDReportProvider
        {
            public InterceptingProvider(KVStore configuration) : base(configuration) { }

            public List<string> Events { get; } = new List<string>();
            public bool PassesOn { get; set; }

            public override void dispatchReport(IMediaBuffer buffer)
            {
                IntPtr data = buffer.map(0);
                bool isMouse = buffer.getType() == 10;
                Events.Add(isMouse
                    ? Marshal.ReadByte(data, 8) + ": " + Marshal.ReadInt32(data) + ", " + Marshal.ReadInt32(data, 4)
                    : Marshal.ReadByte(data, 1) + ": " + Marshal.ReadByte(data) + ", " + Marshal.ReadInt32(data, 4));
                if (PassesOn)
                    base.dispatchReport(buffer);
            }
        }

        private sealed class HostProvider : IHIDReportProvider
        {
            public List<string> Calls { get; } = new List<string>();

            public HostProvider() { }

            public override void setDevice(IHIDDeviceClient device) { Calls.Add(device == null ? "no device" : "device " + device.isConnected()); }
            public override void sendMouseMove(int x, int y) { Calls.Add("move " + x + " " + y); }
            public override void sendMouseScroll(int amount) { Calls.Add("scroll " + amount); }
            public override void sendMouseLeftClick(bool pressed) { Calls.Add("left " + pressed); }
            public override void sendMouseRightClick(bool pressed) { Calls.Add("right " + pressed); }
            public override void sendKey(byte scanCode, bool pressed) { Calls.Add("key " + scanCode + " " + pressed); }
            public override void resetState() { Calls.Add("reset"); }
            public override void dispatchReport(IMediaBuffer buffer) { Calls.Add("dispatch " + (buffer == null)); }
        }

        [Test]
        public void ThePackerMakesMouseReports()
        {
            Assert.Sequence(new byte[] { 0xA1, 1, 0, 5, 0xFD, 0, 0, 0, 0, 0, 0, 0 }, Pack(true, Mouse(5, -3, 0)).Single());
            Assert.Sequence(new byte[] { 0xA1, 1, 0, 0, 0, 0xFF, 0, 0, 0, 0, 0, 0 }, Pack(true, Mouse(9, -1, 6)).Single());
            Assert.Sequence(new byte[] { 1, 0, 5, 0xFD, 0, 0, 0, 0, 0, 0, 0, 0 }, Pack(false, Mouse(5, -3, 0)).Single());
        }

        [Test]
        public void APackerThatIsStoppedForgetsTargetAndButtons()
        {
            using (var taker = new ReportTaker())
            using (var packer = new HIDEventsPacker(configuration))
            {
                packer.registerTarget(taker);
                packer.onFrame(Mouse(0, 0, 2));
                packer.stop();
                packer.onFrame(Mouse(0, 0, 0));
                packer.registerTarget(taker);
                packer.onFrame(Mouse(0, 0, 0));
                Assert.Sequence(new byte[] { 1, 0 }, taker.Reports.Select(report => report[2]));
                Assert.Sequence(new uint[] { 32, 32 }, taker.Sizes);
            }
        }

        [Test]
        public void APackerWantsAConfiguration()
        {
            Assert.NullArgument("orbelantine::KVStore const & type is null", () => new HIDEventsPacker(null));
            Assert.NullArgument("orbelantine::KVStore const & type is null", () => new HIDEventsPacker(null, false));
            Assert.NullArgument("orbelantine::KVStore const & type is null", () => new HIDReportProvider(null));
        }

        [Test]
        public void AProviderDispatchesThroughTheHostsOverride()
        {
            using (var provider = new InterceptingProvider(configuration))
            {
                provider.sendMouseMove(-5, 70000);
                provider.sendMouseScroll(4);
                provider.sendMouseScroll(-3);
                provider.sendMouseScroll(0);
                provider.sendMouseLeftClick(true);
                provider.sendMouseLeftClick(false);
                provider.sendMouseRightClick(true);
                provider.sendMouseRightClick(false);
                provider.sendKey(KeyA, true);
                provider.sendKey(KeyA, false);
                Assert.Sequence(new[] { "0: -5, 70000", "5: 4, 0", "6: -3, 0", "5: 0, 0", "2: 0, 0", "1: 0, 0", "4: 0, 0", "3: 0, 0", "0: 30, -1", "1: 30, -1" },
                                provider.Events);
            }
        }

        [Test]
        public void AProviderWithoutADeviceLogsAndSendsNothing()
        {
            IList<string> lines = TestLog.Record(() =>
            {
                using (var provider = new InterceptingProvider(configuration) { PassesOn = true })
                {
                    provider.setDevice(null);
                    provider.sendMouseMove(1, 1);
                    Assert.Equal(1, provider.Events.Count, "events");
                }
            });
            Assert.True(lines.Single().EndsWith(" | LUMIPORT | error]: No device defined!"), lines.Single());
        }

        [Test]
        public void NativeCodeCallsAProviderOfTheHost()
        {
            using (var device = new HIDDeviceClient())
            using (var provider = new HostProvider())
            {
                IntPtr handle = Raw.Handle<IHIDReportProvider>(provider);
                Raw.Call("input", "IHIDReportProvider_setDevice", handle, Raw.Handle<IHIDDeviceClient>(device));
                Raw.Call("input", "IHIDReportProvider_setDevice", handle, IntPtr.Zero);
                Raw.Call("input", "IHIDReportProvider_sendMouseMove", handle, -1, 2);
                Raw.Call("input", "IHIDReportProvider_sendMouseScroll", handle, -3);
                Raw.Call("input", "IHIDReportProvider_sendMouseLeftClick", handle, true);
                Raw.Call("input", "IHIDReportProvider_sendMouseRightClick", handle, false);
                Raw.Call("input", "IHIDReportProvider_sendKey", handle, (byte)255, true);
                Raw.Call("input", "IHIDReportProvider_resetState", handle);
                Raw.Call("input", "IHIDReportProvider_dispatchReport", handle, IntPtr.Zero);
                Assert.Sequence(new[] { "device False", "no device", "move -1 2", "scroll -3", "left True", "right False", "key 255 True", "reset", "dispatch True" },
                                provider.Calls);
            }
        }

        private IList<byte[]> Pack(bool includeBtCode, params IMediaBuffer[] events)
        {
            using (var taker = new ReportTaker())
            using (var packer = new HIDEventsPacker(configuration, includeBtCode))
            {
                packer.start();
                packer.registerTarget(taker);
                foreach (IMediaBuffer one in events)
                    packer.onFrame(one);
                return taker.Reports;
            }
        }

        private static IInputMediaBufferMouse Mouse(int x, int y, byte type)
        {
            return new IInputMediaBufferMouse(x, y, type);
        }

        private static IInputMediaBufferKeyboard Key(byte code, byte type)
        {
            return new IInputMediaBufferKeyboard(code, type, uint.MaxValue);
        }
    }
}
