using System;
using System.Collections.Generic;
using System.Linq;

namespace Orbelantine.Swig
{
    /// <summary>Disposes objects with threads of their own at the process's end. Mono waits there for
    /// every thread that has called the host.</summary>
    internal static class ProcessEnd
    {
        private static readonly List<WeakReference> Watched = new List<WeakReference>();

        /// <summary>What still runs then may find its objects disposed.</summary>
        public static volatile bool HasBegun;

        static ProcessEnd()
        {
            AppDomain.CurrentDomain.ProcessExit += (sender, end) => DisposeAll();
        }

        public static void Watch(IDisposable working)
        {
            lock (Watched)
            {
                Watched.RemoveAll(reference => !reference.IsAlive);
                Watched.Add(new WeakReference(working));
            }
        }

        private static void DisposeAll()
        {
            HasBegun = true;
            WeakReference[] left;
            lock (Watched)
                left = Watched.ToArray();
            foreach (IDisposable working in left.Select(reference => reference.Target).OfType<IDisposable>())
                working.Dispose();
        }
    }
}
