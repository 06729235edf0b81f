using System;
using System.Collections;
using System.Collections.Generic;
using System.Linq;
using System.Runtime.InteropServices;
using Orbelantine.Swig.avstack_base;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>The containers against those of the runtime, with random operations and arguments that lie
    /// outside as often as inside.</summary>
    public sealed class ContainerModelTests
    {
        private const int Steps = 2000;

        private readonly Random random = new Random(7);

        public void VectorsDoWhatListsDoAndReportWhatLiesOutside()
        {
            CheckVector(() => new ByteVector(), n => (byte)n);
            CheckVector(() => new IntVector(), n => -n);
            CheckVector(() => new UintVector(), n => 4000000000u + (uint)n);
            CheckVector(() => new StringVector(), n => new string('x', 4 * n));
            CheckVector(() => new WStringVector(), n => new string('é', 4 * n));
        }

        public void MapsDoWhatDictionariesDoAndReportKeysThatAreMissingOrThere()
        {
            CheckMap<string, string, string>(() => new MapStringString(), Narrow, Narrow, text => text);
            CheckMap<string, string, string>(() => new MapStringWString(), Narrow, Wide, text => text);
            CheckMap<uint, string, string>(() => new MapUintWString(), n => 4000000000u + (uint)n, Wide, text => text);
            CheckMap<string, string, string>(() => new MapWStringString(), Wide, Narrow, text => text);
            CheckMap<string, string, string>(() => new MapWstringWstring(), Wide, Wide, text => text);
            CheckMap<InputFormat.DeviceType, IMediaBuffer, int>(() => new HIDDescriptorsMap(), n => (InputFormat.DeviceType)n, BufferOf,
                                                                buffer => Marshal.ReadInt32(buffer.map(0)));
            CheckMap<string, KVStore, int>(() => new KVStoreMap(), Narrow, StoreOf, store => store.getIntAt("n"));
        }

        private static object Number(object key) { return key is Enum ? (int)key : key; }
        private static string Narrow(int n) { return new string('k', 5 * n); }
        private static string Wide(int n) { return new string('電', 5 * n); }

        private static IMediaBuffer BufferOf(int n) { return new IInputMediaBufferMouse(n, 0, 0); }

        private static KVStore StoreOf(int n)
        {
            var store = new KVStore();
            store.setIntAt("n", n);
            return store;
        }

        private void CheckVector<T>(Func<IList<T>> make, Func<int, T> value)
        {
            IList<T> vector = make();
            var model = new List<T>();
            for (int step = 0; step < Steps; ++step)
            {
                StepVector(make, vector, model, value);
                Assert.Sequence(model, vector, vector.GetType().Name + " after step " + step);
                if (model.Count > 30)
                {
                    vector.Clear();
                    model.Clear();
                }
            }
            ((IDisposable)vector).Dispose();
        }

        private void StepVector<T>(Func<IList<T>> make, IList<T> vector, List<T> model, Func<int, T> value)
        {
            int size = model.Count;
            int index = random.Next(-2, size + 3);
            int count = random.Next(10) == 0 ? int.MaxValue : random.Next(-1, size + 2);
            T one = value(random.Next(6));
            // A list may also be put into itself.
            bool isItself = random.Next(4) == 0;
            IList<T> given = isItself ? vector : make();
            for (int i = random.Next(5); i > 0 && !isItself; --i)
                given.Add(value(random.Next(6)));
            List<T> values = isItself ? new List<T>(model) : given.ToList();
            string outside = index < 0 || index >= size ? "index" : null;
            string beyond = index < 0 || index > size ? "index" : null;
            string range = index < 0 ? "index" : count < 0 ? "count" : index > size || count > size - index ? "invalid range" : null;
            switch (random.Next(12))
            {
                case 0: Expect(outside, () => Assert.Equal(vector[index], model[index])); break;
                case 1: Expect(outside, () => vector[index] = one, () => model[index] = one); break;
                case 2: Expect(beyond, () => vector.Insert(index, one), () => model.Insert(index, one)); break;
                case 3: Expect(beyond, () => Raw.Invoke(vector, "InsertRange", index, given), () => model.InsertRange(index, values)); break;
                case 4: Expect(null, () => Raw.Invoke(vector, "AddRange", given), () => model.AddRange(values)); break;
                case 5: Expect(range, () => Assert.Sequence((IEnumerable<T>)Raw.Invoke(vector, "GetRange", index, count), model.GetRange(index, count))); break;
                case 6: Expect(range, () => Raw.Invoke(vector, "RemoveRange", index, count), () => model.RemoveRange(index, count)); break;
                case 7: Expect(range, () => Raw.Invoke(vector, "Reverse", index, count), () => model.Reverse(index, count)); break;
                case 8:
                    Expect(index < 0 || index + values.Count > size ? "index" : null, () => Raw.Invoke(vector, "SetRange", index, given),
                           () => values.ForEach(each => model[index++] = each));
                    break;
                case 9: Expect(outside, () => vector.RemoveAt(index), () => model.RemoveAt(index)); break;
                case 10: Search(vector, model, one); break;
                default: Construct(vector, model, one, Math.Min(count, 20)); break;
            }
        }

        private static void Search<T>(IList<T> vector, List<T> model, T one)
        {
            Assert.Equal(model.IndexOf(one), vector.IndexOf(one));
            Assert.Equal(model.Contains(one), vector.Contains(one));
            if (vector.GetType().GetMethod("LastIndexOf") != null)
                Assert.Equal(model.LastIndexOf(one), Raw.Invoke(vector, "LastIndexOf", one));
            Assert.Equal(model.Remove(one), vector.Remove(one));
            Raw.Invoke(vector, "Reverse");
            model.Reverse();
        }

        private static void Construct<T>(IList<T> vector, List<T> model, T one, int count)
        {
            Assert.Sequence(model, (IEnumerable<T>)Activator.CreateInstance(vector.GetType(), vector), "a copy");
            Expect(count < 0 ? "count" : null, () => Assert.Sequence((IEnumerable<T>)Raw.Invoke(vector, "Repeat", one, count), Enumerable.Repeat(one, count)));
            Expect(count < 0 ? "capacity" : null, () =>
                Assert.True((int)vector.GetType().GetProperty("Capacity").GetValue(Activator.CreateInstance(vector.GetType(), count), null) >= count, "capacity"));
        }

        private void CheckMap<K, V, Seen>(Func<IDictionary<K, V>> make, Func<int, K> keyOf, Func<int, V> valueOf, Func<V, Seen> see)
        {
            IDictionary<K, V> map = make();
            var model = new Dictionary<K, Seen>();
            for (int step = 0; step < Steps; ++step)
            {
                K key = keyOf(random.Next(8));
                V value = valueOf(random.Next(10));
                string missing = model.ContainsKey(key) ? null : "key not found";
                string there = model.ContainsKey(key) ? "key already exists" : null;
                switch (random.Next(random.Next(50) == 0 ? 6 : 5))
                {
                    case 0: Expect(missing, () => Assert.Equal(see(map[key]), model[key])); break;
                    case 1: Expect(there, () => map.Add(key, value), () => model.Add(key, see(value))); break;
                    case 2: Expect(null, () => map[key] = value, () => model[key] = see(value)); break;
                    case 3: Assert.Equal(model.Remove(key), map.Remove(key)); break;
                    case 4:
                        var copy = (IDictionary<K, V>)Activator.CreateInstance(map.GetType(), map);
                        Assert.Sequence(map.Keys, copy.Keys);
                        Assert.Sequence(map.Keys.Cast<object>().Select(Number), ((IEnumerable)Raw.Invoke(map, "getKeys")).Cast<object>().Select(Number));
                        break;
                    default: map.Clear(); model.Clear(); break;
                }
                Assert.Equal(model.Count, map.Count);
                Assert.Equal(model.ContainsKey(key), map.ContainsKey(key));
                Assert.True(map.All(pair => model[pair.Key].Equals(see(pair.Value))), map.GetType().Name + " after step " + step);
            }
            ((IDisposable)map).Dispose();
        }

        // The parameter's name or the message of what is thrown; what isn't is done to the model too.
        private static void Expect(string error, Action action, Action model = null)
        {
            string thrown = null;
            try
            {
                action();
            }
            catch (Exception failed) when ((failed.InnerException ?? failed) is ArgumentException)
            {
                var wrong = (ArgumentException)(failed.InnerException ?? failed);
                thrown = wrong is ArgumentOutOfRangeException ? wrong.ParamName : wrong.Message;
            }
            Assert.Equal(error, thrown);
            if (error == null)
                model?.Invoke();
        }
    }
}
