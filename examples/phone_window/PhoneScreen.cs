using System;
using System.Collections.Generic;
using System.IO;
using System.Text;
using Orbelantine.DemoHost;

namespace Orbelantine.PhoneWindow
{
    /// <summary>What the phone shows, by the log that it writes.</summary>
    internal sealed class PhoneScreen : IDisposable
    {
        private const int MostPresses = 500;

        private readonly FileStream file;
        private readonly List<byte> unfinished = new List<byte>();
        private readonly StringBuilder text = new StringBuilder();

        /// <summary>Throws an IOException if the log can't be read.</summary>
        public PhoneScreen(string log)
        {
            file = new FileStream(log, FileMode.Open, FileAccess.Read, FileShare.ReadWrite);
        }

        public int Width { get; private set; } = 1080;
        public int Height { get; private set; } = 2340;
        public (int X, int Y) Cursor { get; private set; }
        /// <summary>Where buttons went down.</summary>
        public Queue<(int X, int Y)> Presses { get; } = new Queue<(int X, int Y)>();
        public string Text { get { return text.ToString(); } }

        /// <summary>Takes what the phone has written since. Whether that changes the picture.</summary>
        public bool Update()
        {
            bool changed = false;
            var block = new byte[4096];
            for (int count = file.Read(block, 0, block.Length); count > 0; count = file.Read(block, 0, block.Length))
                for (int i = 0; i < count; ++i)
                    changed |= Take(block[i]);
            return changed;
        }

        public void Dispose()
        {
            file.Dispose();
        }

        // The phone may be in the middle of a line.
        private bool Take(byte one)
        {
            if (one != '\n')
            {
                unfinished.Add(one);
                return false;
            }
            Dictionary<string, object> line = JsonLine.Read(Encoding.UTF8.GetString(unfinished.ToArray()));
            unfinished.Clear();
            return Show(line);
        }

        private bool Show(Dictionary<string, object> line)
        {
            switch ((string)line["event"])
            {
                case "mouse":
                    Cursor = PlaceOf(line);
                    return true;
                case "press":
                    Presses.Enqueue(PlaceOf(line));
                    if (Presses.Count > MostPresses)
                        Presses.Dequeue();
                    return true;
                case "keyboard":
                    text.Append((string)line["typed"]);
                    return true;
                default:
                    return false;
            }
        }

        private static (int X, int Y) PlaceOf(Dictionary<string, object> line)
        {
            return ((int)line["x"], (int)line["y"]);
        }
    }
}
