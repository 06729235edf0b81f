using System.Collections.Generic;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    public sealed class ContainerTests
    {
        public void NullIsTheEmptyText()
        {
            string[] given = { "grün", null, "\U0001F4F1" };
            foreach (IList<string> texts in new IList<string>[] { new StringVector(given), new WStringVector(given) })
            {
                Assert.Sequence(new[] { "grün", "", "\U0001F4F1" }, texts);
                Assert.True(texts.Contains(null) && texts.Remove(null) && !texts.Remove(null), "null is not the empty text");
            }
            IDictionary<uint, string> map = new MapUintWString { { 4000000000, "grün" }, { 1, null } };
            Assert.True(map.TryGetValue(1, out string found) && !map.TryGetValue(2, out found), "TryGetValue");
            Assert.Sequence(new[] { "", "grün" }, map.Values);
        }

        public void AVectorOfPeersSharesThem()
        {
            using (var peer = new BluetoothPeer("before"))
            using (var peers = new BluetoothPeerVector(new[] { peer }))
            {
                peers[0].update("after", 0, true);
                Assert.Equal("after", peer.name());
            }
        }
    }
}
