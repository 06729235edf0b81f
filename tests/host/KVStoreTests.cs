using System;
using System.Linq;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    public sealed class KVStoreTests : IDisposable
    {
        // U+1F4F1, a pair of surrogates, among letters of other widths.
        private const string Text = "grün \U0001F4F1 電話";

        private readonly KVStore store = new KVStore();

        public void Dispose()
        {
            store.Dispose();
        }

        [Test]
        public void WhatIsSetIsRead()
        {
            var pointer = new IntPtr(0x1234);
            store.setBoolAt("key", true);
            store.setIntAt("key", int.MinValue);
            store.setFloatAt("key", 0.5f);
            store.setStringAt("key", Text);
            store.setWStringAt("key", Text);
            store.setContextAt("key", pointer);
            store.setDataAt("key", new ByteVector(new byte[] { 0, 255 }));

            Assert.Equal(true, store.getBoolAt("key"));
            Assert.Equal(int.MinValue, store.getIntAt("key"));
            Assert.Equal(0.5f, store.getFloatAt("key"));
            Assert.Equal(Text, store.getStringAt("key"));
            Assert.Equal(Text, store.getWStringAt("key"));
            Assert.Equal(pointer, store.getContextAt("key"));
            Assert.Sequence(new byte[] { 0, 255 }, store.getDataAt("key"));
        }

        [Test]
        public void AnEmptyStoreAnswersTheDefaultsOfTheLibrary()
        {
            Assert.Equal(false, store.getBoolAt("key"));
            Assert.Equal(0, store.getIntAt("key"));
            Assert.Equal(0f, store.getFloatAt("key"));
            Assert.Equal("", store.getStringAt("key"));
            Assert.Equal("", store.getWStringAt("key"));
            Assert.Equal(IntPtr.Zero, store.getContextAt("key"));
            Assert.Equal(0, store.getDataAt("key").Count);
            Assert.True(store.getKVStoreAt("key").getKVStoreMap().empty(), "not empty");
        }

        [Test]
        public void TheFirstDefaultAskedForStays()
        {
            var pointer = new IntPtr(0x1234);
            store.getBoolAt("key", true);
            store.getIntAt("key", 5);
            store.getFloatAt("key", 1.5f);
            store.getStringAt("key", "first");
            store.getWStringAt("key", Text);
            store.getContextAt("key", pointer);
            store.getDataAt("key", new ByteVector(new byte[] { 1 }));

            Assert.Equal(true, store.getBoolAt("key", false));
            Assert.Equal(5, store.getIntAt("key", 7));
            Assert.Equal(1.5f, store.getFloatAt("key", 2));
            Assert.Equal("first", store.getStringAt("key", "second"));
            Assert.Equal(Text, store.getWStringAt("key", "second"));
            Assert.Equal(pointer, store.getContextAt("key", IntPtr.Zero));
            Assert.Sequence(new byte[] { 1 }, store.getDataAt("key", new ByteVector()));
        }

        [Test]
        public void NullTextIsTheEmptyText()
        {
            store.setStringAt(null, null);
            store.setWStringAt(null, null);
            store.setIntAt("", 3);
            Assert.Equal("", store.getStringAt("", "default"));
            Assert.Equal("", store.getWStringAt("", "default"));
            Assert.Equal(3, store.getIntAt(null));
            Assert.Equal("", store.getStringAt("absent", null));
        }

        [Test]
        public void ALoneSurrogateSurvives()
        {
            store.setWStringAt("key", "a\uD83D");
            Assert.Equal("a\uD83D", store.getWStringAt("key"));
        }

        [Test]
        public void ANestedStoreIsWrittenInPlace()
        {
            store.getKVStoreAt("a").getKVStoreAt("b").setIntAt("c", 5);
            Assert.Equal(5, store.getKVStoreAt("a").getKVStoreAt("b").getIntAt("c"));
        }

        [Test]
        public void ACopyIsDeepAndSharesItsContexts()
        {
            var pointer = new IntPtr(0x1234);
            store.getKVStoreAt("nested").setIntAt("value", 1);
            store.setContextAt("context", pointer);
            using (var copy = new KVStore(store))
            {
                copy.getKVStoreAt("nested").setIntAt("value", 2);
                Assert.Equal(pointer, copy.getContextAt("context"));
            }
            Assert.Equal(1, store.getKVStoreAt("nested").getIntAt("value"));
        }

        [Test]
        public void TheMapOfNestedStoresIsTheStoresOwn()
        {
            store.getKVStoreAt("b");
            using (var made = new KVStore())
            {
                made.setIntAt("value", 6);
                store.getKVStoreMap().Add("a", made);
            }
            Assert.Sequence(new[] { "a", "b" }, store.getKVStoreMap().Keys.ToArray());
            Assert.Equal(6, store.getKVStoreAt("a").getIntAt("value"));
        }

        [Test]
        public void NullReferencesAreNamedByTheirType()
        {
            const string noStore = "orbelantine::KVStore const & type is null";
            const string noData = "std::vector< uint8_t > const & type is null";
            Assert.NullArgument(noStore, () => new KVStore(null));
            Assert.NullArgument(noStore, () => store.getKVStoreAt("key", null));
            Assert.NullArgument(noStore, () => store.setKVStoreAt("key", null));
            Assert.NullArgument(noData, () => store.getDataAt("key", null));
            Assert.NullArgument(noData, () => store.setDataAt("key", null));
        }

        [Test]
        public void ARefusedArgumentLeavesTheStoreAsItWas()
        {
            Assert.Throws<ArgumentNullException>(() => store.getKVStoreAt("key", null));
            Assert.True(store.getKVStoreMap().empty(), "the key was inserted");
        }
    }
}
