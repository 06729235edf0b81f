using System;
using System.Diagnostics;
using Orbelantine.Swig.common;

namespace Orbelantine.HostBench
{
    /// <summary>What a call across the boundary costs a C# host: a line for each kind of call, its name, a
    /// tab, and nanoseconds.</summary>
    public static class Program
    {
        private const string Key = "peerAddress";
        private const string Text = "00:11:22:33:44:55";

        public static int Main()
        {
            using (var store = new KVStore())
            using (var code = HidErrors.getErrorCode(0))
            {
                store.setIntAt(Key, 7);
                store.setStringAt(Key, Text);
                store.setWStringAt(Key, Text);

                // The least a call costs: no argument, a number back.
                Report("HostBareCall", () => Common.get_log_level());
                Report("HostGetInt", () => store.getIntAt(Key, 0));
                Report("HostGetString", () => store.getStringAt(Key, null));
                Report("HostGetWString", () => store.getWStringAt(Key, null));
                Report("HostTextIn", () => store.setStringAt(Key, Text));
                Report("HostErrorCode", () => HidErrors.getErrorCode(0).Dispose());
                Callbacks.Report(code);
            }
            return 0;
        }

        // The best of several rounds, each long enough for the clock; the first ones warm up.
        public static void Report(string name, Action call)
        {
            double best = double.MaxValue;
            for (int round = 0, count = 1000; round < 12; ++round)
            {
                double seconds = Time(call, count);
                best = Math.Min(best, seconds / count);
                count = Math.Min(10000000, Math.Max(count, (int)(count * 0.05 / Math.Max(seconds, 1e-6))));
            }
            Console.WriteLine(name + "\t" + (best * 1e9).ToString("F1", System.Globalization.CultureInfo.InvariantCulture));
        }

        private static double Time(Action call, int count)
        {
            Stopwatch watch = Stopwatch.StartNew();
            for (int i = 0; i < count; ++i)
                call();
            return watch.Elapsed.TotalSeconds;
        }
    }
}
