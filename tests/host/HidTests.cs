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
        /// <summary>Takes every report before it is made, as "type: fields".</summary>
        private sealed class InterceptingProvider : HIDReportProvider
        {
            public InterceptingProvider() : base(new KVStore()) { }

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

            public override int start() => 1;
            public override int stop() => 2;
            public override int removeHIDDeviceRecord() => 3;

            public override int addHIDDeviceRecord(string name, string description, string provider, ushort subclass, IntPtr descriptor, uint size)
            {
                Added = string.Join(", ", name, description, provider, subclass, descriptor, size);
                return -4;
            }
        }

        public void AProviderDispatchesThroughTheHostsOverride()
        {
            using (var provider = new InterceptingProvider())
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
    }
}
