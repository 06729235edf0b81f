using System;
using System.Runtime.InteropServices;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.DemoHost
{
    /// <summary>The connection to the phone, and the provider of its reports.</summary>
    public sealed class Link : IDisposable
    {
        private readonly KVStore configuration = new KVStore();
        private readonly HIDDeviceClient device = new HIDDeviceClient();

        /// <summary>Tells `stop` when a report finds no phone.</summary>
        public Link(StopSignal stop)
        {
            Provider = new HIDReportProvider(configuration);
            Provider.setDevice(device);
            using (var function = new ErrorCodeCallback(new LostCallback(stop)))
                device.onDisconnected.connect(function).Dispose();
        }

        public HIDReportProvider Provider { get; }

        /// <summary>Null, or why there is no connection.</summary>
        public string Connect(string address)
        {
            using (error_code code = device.connect(address))
                return code.value() == 0 ? null : "error " + code.value() + ", " + code.message();
        }

        public void Dispose()
        {
            if (device.isConnected())
                device.disconnect();
            device.onDisconnected.disconnect_all_slots();
            Provider.Dispose();
            device.Dispose();
            configuration.Dispose();
        }

        /// <summary>Stays alive as long as native code holds it, from pin to unpin.</summary>
        private sealed class LostCallback : ErrorCodeCallbackImpl
        {
            private readonly StopSignal stop;
            private GCHandle held;

            public LostCallback(StopSignal stop)
            {
                this.stop = stop;
            }

            public override void pin()
            {
                held = GCHandle.Alloc(this);
            }

            public override bool unpin()
            {
                held.Free();
                return false;
            }

            public override void call(error_code code)
            {
                code.Dispose();
                stop.Lose();
            }
        }
    }
}
