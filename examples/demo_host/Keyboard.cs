using System.Collections.Generic;
using System.Linq;

namespace Orbelantine.DemoHost
{
    /// <summary>A key by its scan code, and what pressing it writes on the phone: "" for nothing.</summary>
    public struct Key
    {
        public byte ScanCode;
        public bool Shift;
        public string Text;

        /// <summary>As Windows numbers it; 0 for a key that the demo knows by its scan code alone.</summary>
        public uint VirtualKey
        {
            get { return Text.Length == 1 && char.IsLetterOrDigit(Text[0]) || Text == " " ? char.ToUpperInvariant(Text[0]) : 0u; }
        }
    }

    /// <summary>The keys of a US keyboard, by character and by name.</summary>
    public static class Keyboard
    {
        public const byte LeftShift = 42;
        /// <summary>The virtual key of both Shifts.</summary>
        public const uint ShiftKey = 16;

        // Neighbouring scan codes, without Shift and with it.
        private static readonly (byte First, string Plain, string Shifted)[] Rows =
        {
            (2, "1234567890-=", "!@#$%^&*()_+"),
            (16, "qwertyuiop[]", "QWERTYUIOP{}"),
            (30, "asdfghjkl;'`", "ASDFGHJKL:\"~"),
            (43, "\\zxcvbnm,./", "|ZXCVBNM<>?"),
            (57, " ", ""),
        };

        private static readonly Dictionary<string, Key> Named = new Dictionary<string, Key>
        {
            { "escape", Plain(1) }, { "backspace", Plain(14) }, { "tab", Plain(15, "\t") }, { "enter", Plain(28, "\n") },
            { "space", Plain(57, " ") }, { "home", Plain(199) }, { "up", Plain(200) }, { "pageup", Plain(201) },
            { "left", Plain(203) }, { "right", Plain(205) }, { "end", Plain(207) }, { "down", Plain(208) },
            { "pagedown", Plain(209) }, { "insert", Plain(210) }, { "delete", Plain(211) }, { "mute", Plain(160) },
            { "playpause", Plain(162) }, { "volumedown", Plain(174) }, { "volumeup", Plain(176) }, { "logo", Plain(219) },
        };

        private static readonly Dictionary<char, Key> Characters = MakeCharacters();

        public static IEnumerable<string> Names
        {
            get { return Named.Keys.OrderBy(name => name); }
        }

        public static bool TryName(string name, out Key key)
        {
            return Named.TryGetValue(name, out key);
        }

        public static bool TryCharacter(char character, out Key key)
        {
            return Characters.TryGetValue(character, out key);
        }

        private static Key Plain(byte scanCode, string text = "")
        {
            return new Key { ScanCode = scanCode, Text = text };
        }

        private static Dictionary<char, Key> MakeCharacters()
        {
            var characters = new Dictionary<char, Key>();
            foreach (var row in Rows)
            {
                AddRow(characters, row.First, row.Plain, false);
                AddRow(characters, row.First, row.Shifted, true);
            }
            return characters;
        }

        private static void AddRow(Dictionary<char, Key> characters, byte first, string row, bool shift)
        {
            for (int i = 0; i < row.Length; ++i)
                characters[row[i]] = new Key { ScanCode = (byte)(first + i), Shift = shift, Text = row.Substring(i, 1) };
        }
    }
}
