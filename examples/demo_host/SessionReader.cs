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
            "  type TEXT            type the rest of the line, in characters of a US keyboard; text TEXT too\n" +
            "  key NAME             press and release a key, such as enter or volumeup\n" +
            "  surface W H          make the computer's window so large; 540 by 1170 at first\n" +
            "  phone W H SCALE ROTATION\n" +
            "                       the phone's screen as it is held, the scale of its viewport, and its\n" +
            "                       rotation in quarter turns: 1 (upright) to 4\n" +
            "  click X Y            click at a point of the window\n" +
            "  touch X Y            tap there with a finger\n" +
            "  drag X1 Y1 X2 Y2     press, move and release\n" +
            "  wheel N X Y          turn the wheel by N steps at a point\n" +
            "  wait MS              pause\n" +
            "  idle MS              let the link sleep after so long without input; 0 is never\n" +
            "  sleep, wake          put the link to sleep, and wake it\n" +
            "  vanish MS            the phone disappears and comes back\n" +
            "  refresh              have the phone read the computer's service record again\n" +
            "  discover             look for peers, and list them\n" +
            "  pair NAME            ask a peer to be paired\n" +
            "  approve NAME         a peer asks to be paired, and the computer agrees\n" +
            "  unpair NAME          let a paired peer go\n" +
            "  radio on|off         switch Bluetooth\n" +
            "Blank lines and lines that begin with # are skipped.\n";

        private const int MaxSide = 20000;
        private const int MaxPauseMs = 60000;
        private const int MaxWheel = 100;
        private const double MaxScale = 10;

        private const string Names =
            "type, text, key, surface, phone, click, touch, drag, wheel, wait, idle, sleep, wake, vanish, refresh, " +
            "discover, pair, approve, unpair and radio";

        private readonly string name;
        private int lineNumber;

        /// <summary>`name` is the file's, for the complaints.</summary>
        public SessionReader(string name)
        {
            this.name = name;
        }

        public List<Step> Steps { get; } = new List<Step>();
        public List<string> Complaints { get; } = new List<string>();

        public void Read(TextReader reader)
        {
            for (string line = reader.ReadLine(); line != null; line = reader.ReadLine())
                Read(line);
        }

        public void Read(string line)
        {
            ++lineNumber;
            if (line.Trim() != "" && !line.TrimStart().StartsWith("#"))
                Take(line.TrimStart());
        }

        private void Take(string line)
        {
            string[] words = line.Split((char[])null, StringSplitOptions.RemoveEmptyEntries);
            string[] values = words.Skip(1).ToArray();
            switch (words[0])
            {
                case "type":
                case "text": Type(line.Substring(words[0].Length)); break;
                case "key": PressKey(values); break;
                case "surface": Take(values, 2, 1, MaxSide, "surface wants W and H", (to, n) => to.ResizeSurface(n[0], n[1])); break;
                case "phone": Phone(values); break;
                case "click": Take(values, 2, 0, MaxSide, "click wants X and Y", (to, n) => to.Click(n[0], n[1])); break;
                case "touch": Take(values, 2, 0, MaxSide, "touch wants X and Y", (to, n) => to.Touch(n[0], n[1])); break;
                case "drag": Take(values, 4, 0, MaxSide, "drag wants X1, Y1, X2 and Y2", (to, n) => to.Drag(n[0], n[1], n[2], n[3])); break;
                case "wheel": Wheel(values); break;
                case "wait": Take(values, 1, 0, MaxPauseMs, "wait wants milliseconds", (to, n) => to.Wait(n[0]), StepKind.Pause); break;
                case "idle": Take(values, 1, 0, MaxPauseMs, "idle wants milliseconds", (to, n) => to.SetIdleTimeout(n[0])); break;
                case "sleep": Take(values, 0, 0, 0, "sleep", (to, n) => to.Sleep()); break;
                case "wake": Take(values, 0, 0, 0, "wake", (to, n) => to.Wake()); break;
                case "vanish": Take(values, 1, 1, MaxPauseMs, "vanish wants milliseconds", (to, n) => to.Vanish(n[0])); break;
                case "refresh": Take(values, 0, 0, 0, "refresh", (to, n) => to.Refresh()); break;
                case "discover": Take(values, 0, 0, 0, "discover", (to, n) => to.Discover(), StepKind.Peers); break;
                case "pair": Name(values, "pair", (to, peer) => to.Pair(peer)); break;
                case "approve": Name(values, "approve", (to, peer) => to.Approve(peer)); break;
                case "unpair": Name(values, "unpair", (to, peer) => to.Unpair(peer)); break;
                case "radio": Radio(values); break;
                default: Complain("no step '" + words[0] + "'; there are " + Names); break;
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
            Add("type " + text.Length + " characters", player => keys.ForEach(player.Press));
        }

        private void PressKey(string[] values)
        {
            if (values.Length == 1 && Keyboard.TryName(values[0], out Key key))
                Add("press " + values[0], player => player.Press(key));
            else
                Complain("key wants one name of " + string.Join(", ", Keyboard.Names));
        }

        private void Phone(string[] values)
        {
            bool isWhole = TryNumbers(values.Where((_, i) => i != 2).ToArray(), 3, 1, MaxSide, out int[] n);
            if (isWhole && n[2] <= 4 && TryScale(values[2], out double scale))
                Add("phone of " + n[0] + " x " + n[1] + ", scale " + values[2] + ", rotation " + n[2], player => player.ChangePhone(n[0], n[1], scale, n[2]));
            else
                Complain("phone wants W, H, SCALE and ROTATION: sides from 1 to 20000, a scale up to 10, a rotation from 1 to 4");
        }

        private void Wheel(string[] values)
        {
            bool isPlace = TryNumbers(values.Skip(1).ToArray(), 2, 0, MaxSide, out int[] place);
            if (TryNumbers(values.Take(1).ToArray(), 1, -MaxWheel, MaxWheel, out int[] amount) && isPlace && amount[0] != 0)
                Add("wheel by " + amount[0] + " at " + place[0] + ", " + place[1], player => player.Wheel(amount[0], place[0], place[1]));
            else
                Complain("wheel wants N, X and Y: steps from -100 to 100 that are not 0, then a point");
        }

        // A name may have blanks in it.
        private void Name(string[] values, string step, Action<Player, string> play)
        {
            string peer = string.Join(" ", values);
            if (peer != "")
                Add(step + " " + peer, player => play(player, peer), StepKind.Peers);
            else
                Complain(step + " wants the name of a peer");
        }

        private void Radio(string[] values)
        {
            if (values.Length == 1 && (values[0] == "on" || values[0] == "off"))
                Add("radio " + values[0], player => player.SwitchRadio(values[0] == "on"), StepKind.Peers);
            else
                Complain("radio wants on or off");
        }

        private void Take(string[] values, int count, int low, int high, string wanted, Action<Player, int[]> step,
                          StepKind kind = StepKind.Input)
        {
            if (TryNumbers(values, count, low, high, out int[] numbers))
                Add((wanted.Split(' ')[0] + " " + string.Join(", ", numbers)).TrimEnd(), player => step(player, numbers), kind);
            else
                Complain(count == 0 ? wanted + " wants nothing behind it" : wanted + ", whole numbers from " + low + " to " + high);
        }

        private void Add(string meaning, Action<Player> play, StepKind kind = StepKind.Input)
        {
            Steps.Add(new Step(meaning, kind, play));
        }

        private void Complain(string what)
        {
            Complaints.Add(name + ":" + lineNumber + ": " + what);
        }

        private static bool TryScale(string word, out double scale)
        {
            return double.TryParse(word, NumberStyles.AllowDecimalPoint, CultureInfo.InvariantCulture, out scale) &&
                   scale > 0 && scale <= MaxScale;
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
