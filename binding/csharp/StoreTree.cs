using System;
using System.Collections.Generic;
using System.Linq;
using System.Runtime.CompilerServices;
using Orbelantine.Swig.common;

namespace Orbelantine.Swig
{
    /// <summary>What a host holds of the inside of one store, by where it lies: replacing or removing a
    /// nested store ends what was within it.</summary>
    internal sealed class StoreTree
    {
        private sealed class Place
        {
            public StoreTree Tree;
            public string[] Path;
        }

        private static readonly ConditionalWeakTable<NativeObject, Place> Places = new ConditionalWeakTable<NativeObject, Place>();

        private readonly List<WeakReference> parts = new List<WeakReference>();
        private int sweepAt = 64;

        public static KVStore Nested(NativeObject whole, string key, KVStore part)
        {
            return Put(whole, Inside(whole, key), part);
        }

        public static ByteVector Data(KVStore whole, string key, ByteVector part)
        {
            return Put(whole, Inside(whole, key, "data"), part);
        }

        /// <summary>The map of a store is the store.</summary>
        public static KVStoreMap Map(KVStore whole, KVStoreMap part)
        {
            return Put(whole, PlaceOf(whole).Path, part);
        }

        /// <summary>The store at the key has another content.</summary>
        public static void Replaced(NativeObject whole, string key)
        {
            string[] path = Inside(whole, key);
            PlaceOf(whole).Tree.EndWhere(other => other.Length > path.Length && other.Take(path.Length).SequenceEqual(path));
        }

        public static void Removed(NativeObject whole, string key)
        {
            string[] path = Inside(whole, key);
            PlaceOf(whole).Tree.EndWhere(other => other.Take(path.Length).SequenceEqual(path));
        }

        /// <summary>All nested stores are gone.</summary>
        public static void Cleared(NativeObject whole)
        {
            string[] path = PlaceOf(whole).Path;
            PlaceOf(whole).Tree.EndWhere(other => other.Length > path.Length && other.Take(path.Length).SequenceEqual(path) &&
                                                  other[path.Length].StartsWith("store "));
        }

        private static T Put<T>(NativeObject whole, string[] path, T part) where T : NativeObject
        {
            StoreTree tree = PlaceOf(whole).Tree;
            Places.Add(part, new Place { Tree = tree, Path = path });
            lock (tree.parts)
            {
                if (tree.parts.Count >= tree.sweepAt)
                {
                    tree.parts.RemoveAll(held => !held.IsAlive);
                    tree.sweepAt = Math.Max(64, 2 * tree.parts.Count);
                }
                tree.parts.Add(new WeakReference(part));
            }
            return NativeObject.swigPart(part, whole);
        }

        private static string[] Inside(NativeObject whole, string key, string kind = "store")
        {
            return PlaceOf(whole).Path.Concat(new[] { kind + " " + key }).ToArray();
        }

        private static Place PlaceOf(NativeObject whole)
        {
            return Places.GetValue(whole, root => new Place { Tree = new StoreTree(), Path = new string[0] });
        }

        private void EndWhere(Func<string[], bool> isGone)
        {
            lock (parts)
                foreach (NativeObject part in parts.Select(held => held.Target).OfType<NativeObject>().Where(part => isGone(PlaceOf(part).Path)))
                    part.swigExpire();
        }
    }
}
