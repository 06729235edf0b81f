using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.Globalization;
using System.Linq;

namespace Orbelantine.DemoHost
{
    /// <summary>What happened when: the session's steps beside the link's events. Any thread may add.</summary>
    public sealed class Timeline
    {
        public const int Input = 0;
        public const int Link = 1;

        private struct Entry
        {
            public double Seconds;
            public int Lane;
            public string What;
        }

        private readonly Stopwatch clock = Stopwatch.StartNew();
        private readonly List<Entry> entries = new List<Entry>();

        public void Add(int lane, string what)
        {
            lock (entries)
                entries.Add(new Entry { Seconds = clock.Elapsed.TotalSeconds, Lane = lane, What = what });
        }

        /// <summary>Two lanes, with runs of the same step drawn as one.</summary>
        public override string ToString()
        {
            List<string[]> rows;
            lock (entries)
                rows = Rows().ToList();
            int width = rows.Max(row => row[1].Length);
            return string.Join(Environment.NewLine, rows.Select(row =>
                (row[0].PadLeft(8) + " | " + row[1].PadRight(width) + " | " + row[2]).TrimEnd()));
        }

        private IEnumerable<string[]> Rows()
        {
            yield return new[] { "seconds", "input", "link" };
            for (int i = 0, end; i < entries.Count; i = end)
            {
                for (end = i + 1; end < entries.Count && entries[end].What == entries[i].What; ++end) { }
                string times = end - i > 1 ? " x " + (end - i) : "";
                string what = entries[i].What + times;
                string at = entries[i].Seconds.ToString("F2", CultureInfo.InvariantCulture);
                yield return entries[i].Lane == Input ? new[] { at, what, "" } : new[] { at, "", what };
            }
        }
    }
}
