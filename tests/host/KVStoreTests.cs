using System;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    public sealed class KVStoreTests
    {
        // U+1F600, a pair of surrogates, among letters of other widths.
        private const string Text = "grün \U0001F600 電話";

        public void WhatIsSetIsReadWhateverTheDefault()
        {
            var store = new KVStore();
            var pointer = new IntPtr(0x1234);
            store.setBoolAt("key", true);
            store.setIntAt("key", int.MinValue);
            store.setFloatAt("key", 0.5f);
            store.setStringAt("key", Text);
            store.setWStringAt("key", Text + "\uD83D");
            store.setContextAt("key", pointer);
            store.setDataAt("key", new ByteVector(new byte[] { 0, 255 }));

            Assert.Equal(true, store.getBoolAt("key", false));
            Assert.Equal(int.MinValue, store.getIntAt("key", 7));
            Assert.Equal(0.5f, store.getFloatAt("key", 2));
            Assert.Equal(Text, store.getStringAt("key", "second"));
            Assert.Equal(Text + "\uD83D", store.getWStringAt("key", "second"));
            Assert.Equal(pointer, store.getContextAt("key", IntPtr.Zero));
            Assert.Sequence(new byte[] { 0, 255 }, store.getDataAt("key", new ByteVector()));
            store.setWStringAt(null, null);
            Assert.Equal("", store.getWStringAt("", "default"));
        }
    }
}
