using System.Collections.Generic;

namespace Orbelantine.DemoHost
{
    /// <summary>What was sent beside what was received.</summary>
    public sealed class Summary
    {
        private const int MaxText = 40;

        private readonly List<string[]> rows = new List<string[]> { new[] { "what", "sent", "received", "ok" } };

        public Summary(Tally sent, Tally received)
        {
            Add("text", Quote(sent.Text.ToString()), Quote(received.Text.ToString()), sent.Text.Equals(received.Text));
            Add("key presses", sent.KeyPresses, received.KeyPresses);
            Add("clicks", sent.Clicks, received.Clicks);
            Add("wheel steps up", sent.WheelUp, received.WheelUp);
            Add("wheel steps down", sent.WheelDown, received.WheelDown);
            Add("faulty reports", sent.Errors, received.Errors);
        }

        /// <summary>The names of the rows that differ.</summary>
        public List<string> Differences { get; } = new List<string>();

        public override string ToString()
        {
            return Table.Text(rows, " | ");
        }

        private void Add(string what, int sent, int received)
        {
            Add(what, sent.ToString(), received.ToString(), sent == received);
        }

        private void Add(string what, string sent, string received, bool same)
        {
            rows.Add(new[] { what, sent, received, same ? "yes" : "NO" });
            if (!same)
                Differences.Add(what);
        }

        private static string Quote(string text)
        {
            string shown = text.Replace("\n", "\\n").Replace("\t", "\\t");
            return "\"" + (shown.Length > MaxText ? shown.Substring(0, MaxText) + "..." : shown) + "\"";
        }
    }
}
