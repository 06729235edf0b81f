using System;
using System.Linq;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>Stores put where they come from, and texts that are no formats.</summary>
    public static class StoreMistakes
    {
        private const string Text = "a text that is longer than a small one";

        public static void AStorePutIntoItselfIsACopyOfWhatItWas()
        {
            using (var store = new KVStore())
            {
                KVStore b = store.getKVStoreAt("a").getKVStoreAt("b");
                b.setStringAt("key", Text);
                store.setKVStoreAt("a", b);
                Assert.Equal(Text, store.getKVStoreAt("a").getStringAt("key"));
                store.getKVStoreMap()["a"] = store;
                Assert.Equal(Text, store.getKVStoreAt("a").getKVStoreAt("a").getStringAt("key"));
                store.setKVStoreAt("self", store);
                Assert.Sequence(new[] { "a" }, store.getKVStoreAt("self").getKVStoreMap().Keys.ToArray());
            }
        }

        public static void WhatLayInAReplacedStoreRefuses()
        {
            using (var store = new KVStore())
            using (var other = new KVStore())
            {
                KVStore a = store.getKVStoreAt("a");
                KVStore b = a.getKVStoreAt("b");
                ByteVector data = a.getDataAt("data");
                KVStore beside = store.getKVStoreAt("beside").getKVStoreAt("b");
                store.setKVStoreAt("a", other);
                Assert.Throws<ObjectDisposedException>(() => b.getIntAt("key"));
                Assert.Throws<ObjectDisposedException>(() => data.Clear());
                a.setIntAt("key", 5);
                Assert.Equal(5, store.getKVStoreAt("a").getIntAt("key"));

                b = a.getKVStoreAt("b");
                store.getKVStoreMap()["a"] = other;
                Assert.Throws<ObjectDisposedException>(() => b.getIntAt("key"));
                store.getKVStoreMap().Remove("a");
                Assert.Throws<ObjectDisposedException>(() => a.getIntAt("key"));
                Assert.Equal(0, beside.getIntAt("key"));
                store.getKVStoreMap().Clear();
                Assert.Throws<ObjectDisposedException>(() => beside.getIntAt("key"));
            }
        }

        public static void AListMayBePutIntoItself()
        {
            using (var bytes = new ByteVector(new byte[] { 1, 2 }))
            {
                bytes.AddRange(bytes);
                bytes.InsertRange(1, bytes);
                Assert.Sequence(new byte[] { 1, 1, 2, 1, 2, 2, 1, 2 }, bytes);
            }
        }

        public static void ATextThatLooksLikeAFormatIsLoggedAsItIs()
        {
            string[] texts = { "%s%n%p 100% \U0001F4F1 grün", "%", "" };
            var lines = TestLog.Record(() =>
            {
                foreach (string text in texts)
                    Common.lumiport_log_fmt(TestLog.Info, TestLog.Tag, text);
                Common.lumiport_log_fmt(TestLog.Info, null, null);
                Common.lumiport_log_private_fmt(TestLog.Info, null, "%n");
                Common.lumiport_log(TestLog.Info, null, null);
            });
            Assert.Sequence(texts, lines.Take(3).Select(line => line.Substring(line.IndexOf("]: ") + 3)));
        }
    }
}
