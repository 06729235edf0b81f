using System;
using System.Collections.Generic;
using System.Linq;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    public sealed class ContainerTests
    {
        public void TextsOfAVector()
        {
            using (var texts = new StringVector(new[] { "grün", "\U0001F4F1", null, "grün" }))
            {
                Assert.Sequence(new[] { "grün", "\U0001F4F1", "", "grün" }, texts);
                Assert.Equal(3, texts.LastIndexOf("grün"));
                Assert.True(texts.Contains(null), "null is not the empty text");
            }
        }

        public void WideTextsOfAVectorAreFoundByTheHost()
        {
            IList<string> texts = new WStringVector(new[] { "grün", null, "\U0001F4F1" });
            Assert.Sequence(new[] { 0, 1, 2, -1 }, new[] { "grün", "", "\U0001F4F1", "x" }.Select(texts.IndexOf));
            Assert.True(texts.Contains(null) && texts.Remove("grün") && !texts.Remove("grün"), "not found");
            Assert.Sequence(new[] { "", "\U0001F4F1" }, texts);
        }

        public void AMapIsADictionary()
        {
            IDictionary<uint, string> map = new MapUintWString { { 4000000000, "grün" }, { 1, null } };
            string found;
            Assert.True(map.TryGetValue(1, out found) && !map.TryGetValue(2, out found), "TryGetValue");
            Assert.Sequence(new[] { "", "grün" }, map.Values);
            Assert.Equal("key not found", Assert.Throws<ArgumentOutOfRangeException>(() => map[2].ToString()).ParamName);
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
