using System;
using System.Collections.Generic;
using System.Linq;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    public sealed class ContainerTests
    {
        [Test]
        public void AVectorIsMadeEmptyFromACopyOrWithACapacity()
        {
            Assert.Equal(0, new ByteVector().Count);
            Assert.Sequence(new byte[] { 1, 2 }, new ByteVector(Bytes(1, 2)));
            using (var reserved = new ByteVector(9))
            {
                Assert.Equal(0, reserved.Count);
                Assert.Equal(9, reserved.Capacity);
            }
        }

        [Test]
        public void AVectorKeepsWhatIsPutInIt()
        {
            ByteVector bytes = Bytes(1);
            bytes.Add(3);
            bytes.Insert(1, 2);
            bytes.Insert(3, 4);
            bytes.AddRange(Bytes(8, 9));
            bytes.InsertRange(0, Bytes(0));
            bytes[5] = 5;
            bytes.RemoveAt(6);
            Assert.Sequence(new byte[] { 0, 1, 2, 3, 4, 5 }, bytes);
        }

        [Test]
        public void RangesOfAVector()
        {
            ByteVector bytes = Bytes(0, 1, 2, 3, 4);
            Assert.Sequence(new byte[] { 1, 2 }, bytes.GetRange(1, 2));
            Assert.Sequence(new byte[0], bytes.GetRange(5, 0));
            Assert.Sequence(new byte[] { 7, 7, 7 }, ByteVector.Repeat(7, 3));
            bytes.SetRange(3, Bytes(8, 9));
            bytes.Reverse(0, 3);
            Assert.Sequence(new byte[] { 2, 1, 0, 8, 9 }, bytes);
            bytes.RemoveRange(1, 2);
            bytes.Reverse();
            Assert.Sequence(new byte[] { 9, 8, 2 }, bytes);
            bytes.Clear();
            Assert.Equal(0, bytes.Count);
        }

        [Test]
        public void SearchingAVector()
        {
            ByteVector bytes = Bytes(5, 6, 5);
            Assert.True(bytes.Contains(6) && !bytes.Contains(7), "Contains");
            Assert.Equal(0, bytes.IndexOf(5));
            Assert.Equal(2, bytes.LastIndexOf(5));
            Assert.Equal(-1, bytes.IndexOf(7));
            Assert.Equal(-1, bytes.LastIndexOf(7));
            Assert.Equal(false, bytes.Remove(7));
            Assert.Equal(true, bytes.Remove(5));
            Assert.Sequence(new byte[] { 6, 5 }, bytes);
        }

        [Test]
        public void AnIndexOutsideAVectorIsReported()
        {
            ByteVector bytes = Bytes(1, 2);
            foreach (int index in new[] { -1, 2 })
            {
                Assert.OutOfRange("index", () => bytes[index].ToString());
                Assert.OutOfRange("index", () => bytes[index] = 0);
                Assert.OutOfRange("index", () => bytes.RemoveAt(index));
                Assert.OutOfRange("index", () => Raw.Call("common", "ByteVector_getitemcopy", Raw.Handle(bytes), index));
            }
            foreach (int index in new[] { -1, 3 })
            {
                Assert.OutOfRange("index", () => bytes.Insert(index, 0));
                Assert.OutOfRange("index", () => bytes.InsertRange(index, Bytes(0)));
            }
            Assert.Sequence(new byte[] { 1, 2 }, bytes);
        }

        [Test]
        public void ARangeIsTestedIndexFirstThenCountThenTogether()
        {
            ByteVector bytes = Bytes(1, 2);
            foreach (Action<int, int> range in Ranges(bytes))
            {
                Assert.OutOfRange("index", () => range(-1, -1));
                Assert.OutOfRange("index", () => range(-1, 0));
                Assert.OutOfRange("count", () => range(3, -1));
                InvalidRange(() => range(3, 0));
                InvalidRange(() => range(1, 2));
            }
            Assert.Sequence(new byte[] { 1, 2 }, bytes);
        }

        [Test]
        public void OtherRangesOfAVectorAreReported()
        {
            Assert.OutOfRange("index", () => Bytes(1).SetRange(-1, Bytes()));
            Assert.OutOfRange("index", () => Bytes(1).SetRange(1, Bytes(2)));
            Assert.OutOfRange("count", () => ByteVector.Repeat(0, -1));
            Assert.OutOfRange("capacity", () => new ByteVector(-1));
            Assert.OutOfRange("capacity", () => new StringVector(-1));
        }

        [Test]
        public void NullVectorsAreNamedByTheirType()
        {
            const string noBytes = "std::vector< unsigned char > const & type is null";
            const string noTexts = "std::vector< std::string > const & type is null";
            Assert.NullArgument(noBytes, () => new ByteVector((ByteVector)null));
            Assert.NullArgument(noBytes, () => Bytes().AddRange(null));
            Assert.NullArgument(noBytes, () => Bytes().InsertRange(0, null));
            Assert.NullArgument(noBytes, () => Bytes().SetRange(0, null));
            Assert.NullArgument(noTexts, () => new StringVector((StringVector)null));
            Assert.NullArgument(noTexts, () => new StringVector().AddRange(null));
        }

        [Test]
        public void TextsOfAVector()
        {
            using (var texts = new StringVector(new[] { "grün", "\U0001F4F1", null, "grün" }))
            {
                Assert.Sequence(new[] { "grün", "\U0001F4F1", "", "grün" }, texts);
                Assert.Equal(1, texts.IndexOf("\U0001F4F1"));
                Assert.Equal(3, texts.LastIndexOf("grün"));
                Assert.True(texts.Contains(null), "null is not the empty text");
                Assert.True(texts.Remove("grün"), "not removed");
                texts[0] = "x";
                Assert.Sequence(new[] { "x", "", "grün" }, texts.GetRange(0, 3));
                Assert.Sequence(new[] { "y", "y" }, StringVector.Repeat("y", 2));
                Assert.OutOfRange("index", () => texts[3].ToString());
            }
        }

        [Test]
        public void AMapKeepsStoresUnderKeysInOrder()
        {
            using (var map = new KVStoreMap())
            {
                Assert.True(map.empty(), "a new map is not empty");
                Assert.Equal(0, map.getKeys().Count);
                map.Add("b", StoreOf(2));
                map["a"] = StoreOf(1);
                map["b"] = StoreOf(3);
                Assert.Equal(2, map.Count);
                Assert.Equal(3, map["b"].getIntAt("value"));
                Assert.Sequence(new[] { "a", "b" }, map.getKeys());
                Assert.Sequence(new[] { "a", "b" }, map.Keys);
                Assert.Sequence(new[] { 1, 3 }, map.Select(entry => entry.Value.getIntAt("value")));
            }
        }

        [Test]
        public void AMapFindsAndForgetsKeys()
        {
            using (var map = new KVStoreMap { { "a", StoreOf(1) }, { "", StoreOf(2) } })
            {
                Assert.True(map.ContainsKey("a") && map.ContainsKey(null) && !map.ContainsKey("A"), "ContainsKey");
                Assert.Equal(true, map.Remove("a"));
                Assert.Equal(false, map.Remove("a"));
                map.Clear();
                Assert.True(map.empty(), "not cleared");
            }
        }

        [Test]
        public void ACopyOfAMapIsItsOwn()
        {
            using (var map = new KVStoreMap { { "a", StoreOf(1) } })
            using (var copy = new KVStoreMap(map))
            {
                copy["a"].setIntAt("value", 2);
                Assert.Equal(1, map["a"].getIntAt("value"));
            }
        }

        [Test]
        public void KeysOfAMapThatAreMissingOrThereAreReported()
        {
            using (var map = new KVStoreMap { { "a", StoreOf(1) } })
            {
                Assert.OutOfRange("key not found", () => map["b"].getIntAt("value"));
                Assert.OutOfRange("key already exists", () => map.Add("a", StoreOf(2)));
                Assert.Equal(1, map["a"].getIntAt("value"));
            }
        }

        [Test]
        public void NullValuesOfAMapAreNamedByTheirType()
        {
            const string noValue = "std::map< std::string,orbelantine::KVStore >::mapped_type const & type is null";
            using (var map = new KVStoreMap())
            {
                Assert.NullArgument(noValue, () => map.Add("a", null));
                Assert.NullArgument(noValue, () => map["a"] = null);
                Assert.NullArgument("std::map< std::string,orbelantine::KVStore,std::less< std::string > > const & type is null",
                                    () => new KVStoreMap(null));
                Assert.True(map.empty(), "the key was inserted");
            }
        }

        private static ByteVector Bytes(params byte[] bytes)
        {
            return new ByteVector(bytes);
        }

        private static KVStore StoreOf(int value)
        {
            var store = new KVStore();
            store.setIntAt("value", value);
            return store;
        }

        private static IEnumerable<Action<int, int>> Ranges(ByteVector bytes)
        {
            yield return (index, count) => bytes.GetRange(index, count);
            yield return (index, count) => bytes.RemoveRange(index, count);
            yield return (index, count) => bytes.Reverse(index, count);
        }

        private static void InvalidRange(Action action)
        {
            ArgumentException thrown = Assert.Throws<ArgumentException>(action);
            Assert.Equal("invalid range", thrown.Message);
            Assert.Equal("", thrown.ParamName);
        }
    }
}
