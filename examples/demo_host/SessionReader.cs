using System;
using System.Collections.Generic;
using System.Globalization;
using System.IO;
using System.Linq;

namespace Orbelantine.DemoHost
{
    /// <summary>Reads a session: every line becomes a step or a complaint.</summary>
    public sealed class SessionReader
    {
        public const string Help =
            "  type TEXT            type the rest of the line, in characters of a US keyboard\n" +
            "  key NAME             press and release a key, such as enter or volumeup\n" +
            "  move DX DY           move the cursor, right and down\n" +
            "  click                press and release the left button\n" +
            "  scroll N             turn the wheel\n" +
            "  wait MS              pause\n" +
            "Blank lines and lines that begin with # are skipped.\n";

        // A report holds 16 bits of each delta.
        private const int MaxDelta = 32767;
        private const int MaxPauseMs = 60000;

        private readonly string name;
        private int lineNumber;

        /// <summary>`name` is the file's, for the complaints.</summary>
        public SessionReader(string name)
        {
            this.name = name;
        }

        public List<Action<Player>> Steps { get; } = new List<Action<Player>>();
        public List<string> Complaints { get; } = new List<string>();

        public void Read(TextReader reader)
        {
            for (string line = reader.ReadLine(); line != null; line = reader.ReadLine())
            {
                ++lineNumber;
                if (line.Trim() == "" || line.TrimStart().StartsWith("#"))
                    continue;
                Take(line.TrimStart());
            }
        }

        private void Take(string line)
        {
            string[] words = line.Split((char[])null, StringSplitOptions.RemoveEmptyEntries);
            string[] values = words.Skip(1).ToArray();
            switch (words[0])
            {
                case "type": Type(line.Substring("type".Length)); break;
                case "key": PressKey(values); break;
                case "move": Move(values); break;
                case "click": Click(values); break;
                case "scroll": Scroll(values); break;
                case "wait": Wait(values); break;
                default: Complain("no step '" + words[0] + "'; there are type, key, move, click, scroll and wait"); break;
            }
        }

        private void Type(string rest)
        {
            string text = rest.Length > 0 ? rest.Substring(1) : "";
            var keys = new List<Key>();
            for (int i = 0; i < text.Length; i += char.IsSurrogatePair(text, i) ? 2 : 1)
            {
                if (Keyboard.TryCharacter(text[i], out Key key))
                    keys.Add(key);
                else
                    Complain("a US keyboard has no key for " + Show(text, i));
            }
            if (text == "")
                Complain("type wants a text behind it");
            Steps.Add(player => keys.ForEach(player.Press));
        }

        private void PressKey(string[] values)
        {
            if (values.Length == 1 && Keyboard.TryName(values[0], out Key key))
                Steps.Add(player => player.Press(key));
            else
                Complain("key wants one name of " + string.Join(", ", Keyboard.Names));
        }

        private void Move(string[] values)
        {
            if (TryNumbers(values, 2, -MaxDelta, MaxDelta, out int[] by) && (by[0] != 0 || by[1] != 0))
                Steps.Add(player => player.Move(by[0], by[1]));
            else
                Complain("move wants DX and DY, whole numbers from -32767 to 32767 that are not both 0");
        }

        private void Click(string[] values)
        {
            if (values.Length == 0)
                Steps.Add(player => player.Click());
            else
                Complain("click wants nothing behind it");
        }

        private void Scroll(string[] values)
        {
            if (TryNumbers(values, 1, -MaxDelta, MaxDelta, out int[] amount))
                Steps.Add(player => player.Scroll(amount[0]));
            else
                Complain("scroll wants a whole number from -32767 to 32767");
        }

        private void Wait(string[] values)
        {
            if (TryNumbers(values, 1, 0, MaxPauseMs, out int[] pause))
                Steps.Add(player => player.Wait(pause[0]));
            else
                Complain("wait wants milliseconds from 0 to 60000");
        }

        private void Complain(string what)
        {
            Complaints.Add(name + ":" + lineNumber + ": " + what);
        }

        private static bool TryNumbers(string[] words, int count, int low, int high, out int[] numbers)
        {
            numbers = new int[words.Length];
            for (int i = 0; i < words.Length; ++i)
                if (!int.TryParse(words[i], NumberStyles.AllowLeadingSign, CultureInfo.InvariantCulture, out numbers[i]) ||
                    numbers[i] < low || numbers[i] > high)
                    return false;
            return words.Length == count;
        }

        private static string Show(string text, int at)
        {
            int point = char.IsSurrogatePair(text, at) ? char.ConvertToUtf32(text, at) : text[at];
            string code = "U+" + point.ToString("X4");
            return char.IsControl(text[at]) || char.IsSurrogate(text[at]) && point < 0x10000
                ? code
                : "'" + text.Substring(at, point >= 0x10000 ? 2 : 1) + "' (" + code + ")";
        }
    }
}
