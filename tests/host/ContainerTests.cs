using System;
using System.Collections.Generic;
using System.Linq;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    public sealed class ContainerTests
    {
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
        public void WideTextsOfAVectorAreFoundByTheHost()
        {
            IList<string> texts = new WStringVector(new[] { "grün", null, "\U0001F4F1" });
            Assert.Sequence(new[] { 0, 1, 2, -1 }, new[] { "grün", "", "\U0001F4F1", "x" }.Select(texts.IndexOf));
            Assert.True(texts.Contains(null) && texts.Remove("grün") && !texts.Remove("grün"), "not found");
            Assert.Sequence(new[] { "", "\U0001F4F1" }, texts);
        }

        [Test]
        public void AMapIsADictionary()
        {
            IDictionary<uint, string> map = new MapUintWString { { 4000000000, "grün" }, { 1, null } };
            string found;
            Assert.True(map.TryGetValue(1, out found) && !map.TryGetValue(2, out found), "TryGetValue");
            Assert.Sequence(new uint[] { 1, 4000000000 }, map.Keys);
            Assert.Sequence(new[] { "", "grün" }, map.Values);
            Assert.True(map.Remove(1) && !map.ContainsKey(1), "Remove");
            Assert.OutOfRange("key not found", () => map[1].ToString());
            Assert.OutOfRange("key already exists", () => map.Add(4000000000, ""));
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
