using System;
using System.Collections.Generic;
using System.Globalization;
using System.Text;

namespace Orbelantine.DemoHost
{
    /// <summary>Reads one JSON object from one line: texts, whole numbers, true and false, lists and
    /// objects in it.</summary>
    public sealed class JsonLine
    {
        private readonly string line;
        private int at;

        private JsonLine(string line)
        {
            this.line = line;
        }

        /// <summary>Throws a FormatException for what is no JSON object.</summary>
        public static Dictionary<string, object> Read(string line)
        {
            var reader = new JsonLine(line);
            Dictionary<string, object> members = reader.ReadObject();
            reader.SkipSpace();
            if (reader.at != line.Length)
                throw reader.Fault("the end");
            return members;
        }

        private Dictionary<string, object> ReadObject()
        {
            var members = new Dictionary<string, object>();
            ReadItems('{', '}', () =>
            {
                string key = ReadText();
                Expect(':');
                members[key] = ReadValue();
            });
            return members;
        }

        private List<object> ReadList()
        {
            var items = new List<object>();
            ReadItems('[', ']', () => items.Add(ReadValue()));
            return items;
        }

        private void ReadItems(char open, char close, Action readItem)
        {
            Expect(open);
            if (Takes(close))
                return;
            do
                readItem();
            while (Takes(','));
            Expect(close);
        }

        private object ReadValue()
        {
            switch (Peek())
            {
                case '{': return ReadObject();
                case '[': return ReadList();
                case '"': return ReadText();
                default: return ReadWord();
            }
        }

        private object ReadWord()
        {
            int start = at;
            while (at < line.Length && ",]} ".IndexOf(line[at]) < 0)
                ++at;
            string word = line.Substring(start, at - start);
            if (word == "true" || word == "false")
                return word == "true";
            if (int.TryParse(word, NumberStyles.AllowLeadingSign, CultureInfo.InvariantCulture, out int number))
                return number;
            throw Fault("a value");
        }

        private string ReadText()
        {
            Expect('"');
            var text = new StringBuilder();
            while (at < line.Length && line[at] != '"')
                text.Append(line[at++] == '\\' ? ReadEscape() : line[at - 1]);
            Expect('"');
            return text.ToString();
        }

        private char ReadEscape()
        {
            const string escapes = "\"\\/bfnrt";
            const string meanings = "\"\\/\b\f\n\r\t";
            char escape = at < line.Length ? line[at++] : '\0';
            int which = escapes.IndexOf(escape);
            if (which >= 0)
                return meanings[which];
            if (escape != 'u' || at + 4 > line.Length ||
                !ushort.TryParse(line.Substring(at, 4), NumberStyles.AllowHexSpecifier, CultureInfo.InvariantCulture, out ushort unit))
                throw Fault("an escape");
            at += 4;
            return (char)unit;
        }

        private bool Takes(char wanted)
        {
            bool there = Peek() == wanted;
            at += there ? 1 : 0;
            return there;
        }

        private void Expect(char wanted)
        {
            if (!Takes(wanted))
                throw Fault("'" + wanted + "'");
        }

        private char Peek()
        {
            SkipSpace();
            return at < line.Length ? line[at] : '\0';
        }

        private void SkipSpace()
        {
            while (at < line.Length && line[at] == ' ')
                ++at;
        }

        private FormatException Fault(string wanted)
        {
            return new FormatException("expected " + wanted + " at column " + (at + 1) + " of " + line);
        }
    }
}
