using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;

namespace Orbelantine.DemoHost
{
    /// <summary>A remote device as the manager's list had it.</summary>
    public sealed class Peer
    {
        private static readonly string[] Kinds =
        {
            "unknown", "miscellaneous", "computer", "phone", "access point", "audio/video", "peripheral", "imaging",
            "wearable", "toy", "health",
        };

        /// <summary>To be made on the thread that the manager calls from, which is the one that changes its
        /// peers.</summary>
        public Peer(BluetoothPeer native)
        {
            Native = native;
            Name = native.name();
            Kind = Kinds[native.deviceType()];
            using (CMacAddress address = native.address())
                Address = address.getStdStringAddress();
        }

        /// <summary>The one in the list.</summary>
        public BluetoothPeer Native { get; }
        public string Name { get; }
        public string Address { get; }
        public string Kind { get; }

        /// <summary>Only the host knows which peers are paired: it marks them itself.</summary>
        public void Mark(bool isPaired)
        {
            Native.update(Native.name(), Native.deviceClass(), isPaired);
        }
    }
}
