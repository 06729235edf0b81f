using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.IO;
using System.Text;

namespace Orbelantine.DemoHost
{
    /// <summary>Follows the log of a virtual phone and counts what it received since this object was
    /// made.</summary>
    public sealed class PhoneLog : IDisposable
    {
        private const int PollMs = 10;

        private readonly FileStream file;
        private readonly List<byte> unfinished = new List<byte>();
        private int buttons;

        /// <summary>Throws an IOException if the file can't be read.</summary>
        public PhoneLog(string path)
        {
            file = new FileStream(path, FileMode.Open, FileAccess.Read, FileShare.ReadWrite);
            file.Seek(0, SeekOrigin.End);
        }

        public Tally Received { get; } = new Tally();

        /// <summary>Waits until so many reports have come, for at most a time, or until stopped.</summary>
        public void WaitForReports(int reports, TimeSpan limit, StopSignal stop)
        {
            Stopwatch waited = Stopwatch.StartNew();
            for (Read(); Received.Reports < reports && waited.Elapsed < limit && !stop.IsSet; Read())
                stop.Pause(PollMs);
        }

        public void Dispose()
        {
            file.Dispose();
        }

        private void Read()
        {
            var block = new byte[4096];
            for (int count = file.Read(block, 0, block.Length); count > 0; count = file.Read(block, 0, block.Length))
                for (int i = 0; i < count; ++i)
                    Take(block[i]);
        }

        // The phone may be in the middle of a line.
        private void Take(byte one)
        {
            if (one != '\n')
            {
                unfinished.Add(one);
                return;
            }
            Count(JsonLine.Read(Encoding.UTF8.GetString(unfinished.ToArray())));
            unfinished.Clear();
        }

        private void Count(Dictionary<string, object> line)
        {
            switch ((string)line["event"])
            {
                case "mouse": CountMouse(line); break;
                case "keyboard": CountKeyboard(line); break;
                case "consumer": CountPress((int)line["usage"]); break;
                case "system": CountPress((int)line["code"]); break;
                case "error": ++Received.Errors; break;
            }
        }

        private void CountMouse(Dictionary<string, object> line)
        {
            int before = buttons;
            int dx = (int)line["dx"];
            int dy = (int)line["dy"];
            buttons = (int)line["buttons"];
            bool moves = dx != 0 || dy != 0;
            ++Received.Reports;
            Received.Moves += moves ? 1 : 0;
            Received.Dx += dx;
            Received.Dy += dy;
            Received.Clicks += buttons & ~before & 1;
            Received.Scrolls += moves || buttons != before ? 0 : 1;
            Received.Wheel += (int)line["wheel"];
        }

        private void CountKeyboard(Dictionary<string, object> line)
        {
            ++Received.Reports;
            Received.KeyPresses += ((List<object>)line["pressed"]).Count;
            Received.Text.Append((string)line["typed"]);
        }

        // 0 is the release of such a key.
        private void CountPress(int code)
        {
            ++Received.Reports;
            Received.KeyPresses += code == 0 ? 0 : 1;
        }
    }
}
