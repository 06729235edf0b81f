using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using Orbelantine.Swig.avstack_base;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>What native HID code gives to objects of the host, and the other way.</summary>
    public sealed class HidTests
    {
        /// <summary>Takes what a packer hands on.</summary>
        private sealed class ReportTaker : IMediaElement
        {
            public byte[] Report { get; private set; }

            // The payload begins with a pointer to the report's buffer: its table of functions, type, size,
            // timestamp and bytes.
            public override void onFrame(IMediaBuffer buffer)
            {
                IntPtr raw = Marshal.ReadIntPtr(buffer.map(0));
                Report = new byte[Marshal.ReadInt32(raw, IntPtr.Size + 4)];
                Marshal.Copy(Marshal.ReadIntPtr(raw, IntPtr.Size + 16), Report, 0, Report.Length);
            }
        }

        /// <summary>Takes every report before it is made, as "type: fields".</summary>
        private sealed class InterceptingProvider : HIDReportProvider
        {
            public InterceptingProvider(KVStore configuration) : base(configuration) { }

            public List<string> Events { get; } = new List<string>();

            public override void dispatchReport(IMediaBuffer buffer)
            {
                IntPtr data = buffer.map(0);
                bool isMouse = buffer.getType() == 10;
                Events.Add(isMouse
                    ? Marshal.ReadByte(data, 8) + ": " + Marshal.ReadInt32(data) + ", " + Marshal.ReadInt32(data, 4)
                    : Marshal.ReadByte(data, 1) + ": " + Marshal.ReadByte(data) + ", " + Marshal.ReadInt32(data, 4));
            }
        }

        private sealed class HostRecords : IBluetoothSDPController
        {
            public string Added { get; private set; }

            public override int start() { return 1; }
            public override int stop() { return 2; }
            public override int removeHIDDeviceRecord() { return 3; }

            public override int addHIDDeviceRecord(string name, string description, string provider, ushort subclass, IntPtr descriptor, uint size)
            {
                Added = string.Join(", ", name, description, provider, subclass, descriptor, size);
                return -4;
            }
        }

        public void APackerHandsItsReportsToAnElementOfTheHost()
        {
            ExpectReport(new byte[] { 0xA1, 1, 0, 5, 0xFD, 0, 0, 0, 0, 0, 0, 0 }, configuration => new HIDEventsPacker(configuration));
            ExpectReport(new byte[] { 1, 0, 5, 0xFD, 0, 0, 0, 0, 0, 0, 0, 0 }, configuration => new HIDEventsPacker(configuration, false));
        }

        public void AProviderDispatchesThroughTheHostsOverride()
        {
            using (var configuration = new KVStore())
            using (var provider = new InterceptingProvider(configuration))
            {
                provider.sendMouseMove(-5, 70000);
                provider.sendMouseScroll(-3);
                provider.sendMouseLeftClick(true);
                provider.sendMouseRightClick(false);
                provider.sendKey(174, false);
                Assert.Sequence(new[] { "0: -5, 70000", "6: -3, 0", "2: 0, 0", "3: 0, 0", "1: 174, -1" }, provider.Events);
            }
        }

        public void NativeCodeCallsTheHostsServiceRecords()
        {
            using (var records = new HostRecords())
            {
                IntPtr handle = Raw.Handle<IBluetoothSDPController>(records);
                Assert.Equal(-4, Raw.Call("input", "IBluetoothSDPController_addHIDDeviceRecord",
                                          handle, "grün", "", null, (ushort)65535, new IntPtr(7), uint.MaxValue));
                Assert.Equal("grün, , , 65535, 7, 4294967295", records.Added);
            }
        }

        private static void ExpectReport(byte[] expected, Func<KVStore, HIDEventsPacker> make)
        {
            using (var taker = new ReportTaker())
            using (var configuration = new KVStore())
            using (HIDEventsPacker packer = make(configuration))
            using (var move = new IInputMediaBufferMouse(5, -3, 0))
            {
                packer.registerTarget(taker);
                packer.onFrame(move);
                Assert.Sequence(expected, taker.Report);
            }
        }
    }
}
