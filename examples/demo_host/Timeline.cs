using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.Globalization;
using System.Linq;

namespace Orbelantine.DemoHost
{
    /// <summary>What happened when: the session's steps beside the events of the link and of the peers. Any thread may add.</summary>
    public sealed class Timeline
    {
        public const int Input = 0;
        public const int Link = 1;
        public const int Peers = 2;
        private static readonly string[] Lanes = { "input", "link", "peers" };

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

        /// <summary>A lane for each, with runs of the same step drawn as one.</summary>
        public override string ToString()
        {
            lock (entries)
                return Table.Text(Rows().ToList(), " | ");
        }

        // The peers have no lane where nothing is told of them.
        private IEnumerable<string[]> Rows()
        {
            string[] lanes = Lanes.Take(entries.Any(entry => entry.Lane == Peers) ? 3 : 2).ToArray();
            yield return new[] { " seconds" }.Concat(lanes).ToArray();
            for (int i = 0, end; i < entries.Count; i = end)
            {
                for (end = i + 1; end < entries.Count && entries[end].What == entries[i].What; ++end) { }
                string times = end - i > 1 ? " x " + (end - i) : "";
                var row = new[] { entries[i].Seconds.ToString("F2", CultureInfo.InvariantCulture).PadLeft(8) }
                    .Concat(lanes.Select(lane => "")).ToArray();
                row[entries[i].Lane + 1] = entries[i].What + times;
                yield return row;
            }
        }
    }
}
