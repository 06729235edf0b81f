using System;
using System.Collections.Concurrent;
using System.Collections.Generic;
using System.Threading;

namespace Orbelantine.DemoHost
{
    /// <summary>Steps that somebody types at a terminal. Each is answered with what was understood, and one that
    /// can't be read costs its line alone.</summary>
    public sealed class Conversation
    {
        private const int PollMs = 20;

        private readonly StopSignal stop;
        private readonly BlockingCollection<string> lines = new BlockingCollection<string>();

        public Conversation(StopSignal stop)
        {
            this.stop = stop;
        }

        /// <summary>Until the input ends, "quit" is typed, or the signal is set.</summary>
        public IEnumerable<Step> Steps()
        {
            Console.WriteLine("Type a step and press Enter, such as 'type hello' or 'click 100 200'.");
            Console.WriteLine("'help' lists the steps; 'quit' or Ctrl-D ends.");
            new Thread(ReadLines) { IsBackground = true }.Start();
            for (string line = NextLine(); line != null && line.Trim() != "quit"; line = NextLine())
                foreach (Step step in Understand(line))
                    yield return step;
        }

        private static IEnumerable<Step> Understand(string line)
        {
            if (line.Trim() == "help")
            {
                Console.Write(SessionReader.Help);
                yield break;
            }
            var reader = new SessionReader("");
            reader.Read(line);
            reader.Complaints.ForEach(complaint => Console.WriteLine("  not played" + complaint.Substring(complaint.IndexOf(": "))));
            if (reader.Complaints.Count > 0)
                yield break;
            foreach (Step step in reader.Steps)
            {
                Console.WriteLine("  " + step.Meaning);
                yield return step;
            }
        }

        // Read apart: a terminal's line can't be given up by a signal.
        private void ReadLines()
        {
            for (string line = Console.ReadLine(); line != null; line = Console.ReadLine())
                lines.Add(line);
            lines.CompleteAdding();
        }

        private string NextLine()
        {
            Console.Write("> ");
            while (!stop.IsSet)
            {
                if (lines.TryTake(out string line, PollMs))
                    return line;
                if (lines.IsCompleted)
                    break;
            }
            Console.WriteLine();
            return null;
        }
    }
}
