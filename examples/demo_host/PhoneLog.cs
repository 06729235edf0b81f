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

        /// <summary>Throws an IOException if the file can't be read.</summary>
        public PhoneLog(string path)
        {
            file = new FileStream(path, FileMode.Open, FileAccess.Read, FileShare.ReadWrite);
            file.Seek(0, SeekOrigin.End);
        }

        public Tally Received { get; } = new Tally();

        /// <summary>Where the left button went down.</summary>
        public List<(int X, int Y)> Landings { get; } = new List<(int X, int Y)>();

        /// <summary>Waits until as much has come, for at most a time, or until stopped.</summary>
        public void WaitFor(Tally sent, TimeSpan limit, StopSignal stop)
        {
            Stopwatch waited = Stopwatch.StartNew();
            for (Read(); !HasAll(sent) && waited.Elapsed < limit && !stop.IsSet; Read())
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
                case "press": CountButton(line); break;
                case "mouse": Received.Turn((int)line["wheel"]); break;
                case "keyboard": CountKeyboard(line); break;
                case "consumer": CountPress((int)line["usage"]); break;
                case "system": CountPress((int)line["code"]); break;
                case "error": ++Received.Errors; break;
            }
        }

        private bool HasAll(Tally sent)
        {
            return Received.KeyPresses >= sent.KeyPresses && Received.Clicks >= sent.Clicks &&
                   Received.WheelUp >= sent.WheelUp && Received.WheelDown >= sent.WheelDown;
        }

        private void CountButton(Dictionary<string, object> line)
        {
            if ((string)line["button"] != "left")
                return;
            ++Received.Clicks;
            Landings.Add(((int)line["x"], (int)line["y"]));
        }

        private void CountKeyboard(Dictionary<string, object> line)
        {
            Received.KeyPresses += ((List<object>)line["pressed"]).Count;
            Received.Text.Append((string)line["typed"]);
        }

        // 0 is the release of such a key.
        private void CountPress(int code)
        {
            Received.KeyPresses += code == 0 ? 0 : 1;
        }
    }
}
