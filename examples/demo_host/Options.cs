using System;
using System.Collections.Generic;

namespace Orbelantine.DemoHost
{
    /// <summary>What the command line asks for.</summary>
    public sealed class Options
    {
        public const string Usage =
            "usage: DemoHost SESSION [OPTION]...\n" +
            "Plays a session of keys and mouse on a phone; SESSION is a file, or - for standard input.\n" +
            "\n" +
            "  --address ADDRESS    the phone's Bluetooth address; default 00:11:22:33:44:55\n" +
            "  --phone-log FILE     the virtual phone's log, to compare with what was sent\n" +
            "  --phone-control FILE the pipe by which the virtual phone is turned, resized and made to vanish\n" +
            "  --stack-control FILE the pipe by which the virtual stack's radio is switched and its phones ask\n" +
            "  --log-folder DIR     where the library writes its log\n" +
            "  --log-level LEVEL    trace, debug, info, warning, error, critical or off; default info\n" +
            "\n" +
            "A session has one step on a line:\n" +
            SessionReader.Help + "\n" +
            "Exit status: 0 when the phone received what was sent, 1 when it did not, 2 for a wrong command\n" +
            "line or session, 3 when there is no phone, 4 when a step with peers failed, 130 after Ctrl-C.";

        private static readonly string[] Levels = { "trace", "debug", "info", "warning", "error", "critical", "off" };

        public string Session { get; private set; }
        public string Address { get; private set; } = "00:11:22:33:44:55";
        public string PhoneLog { get; private set; }
        public string PhoneControl { get; private set; }
        public string StackControl { get; private set; }
        public string LogFolder { get; private set; }
        public uint LogLevel { get; private set; } = 2;
        public bool WantsHelp { get; private set; }

        /// <summary>Throws an ArgumentException that says what is wrong.</summary>
        public static Options Read(string[] arguments)
        {
            var options = new Options();
            var rest = new Queue<string>(arguments);
            while (rest.Count > 0 && !options.WantsHelp)
                options.Take(rest.Dequeue(), rest);
            if (options.Session == null && !options.WantsHelp)
                throw new ArgumentException("a session is wanted: a file, or - for standard input");
            return options;
        }

        private void Take(string argument, Queue<string> rest)
        {
            switch (argument)
            {
                case "--help": WantsHelp = true; break;
                case "--address": Address = Value(argument, rest); break;
                case "--phone-log": PhoneLog = Value(argument, rest); break;
                case "--phone-control": PhoneControl = Value(argument, rest); break;
                case "--stack-control": StackControl = Value(argument, rest); break;
                case "--log-folder": LogFolder = Value(argument, rest); break;
                case "--log-level": LogLevel = Level(Value(argument, rest)); break;
                default: TakeSession(argument); break;
            }
        }

        private void TakeSession(string argument)
        {
            if (argument.StartsWith("--"))
                throw new ArgumentException("there is no option " + argument);
            if (Session != null)
                throw new ArgumentException("one session is wanted, not '" + argument + "' too");
            Session = argument;
        }

        private static string Value(string option, Queue<string> rest)
        {
            if (rest.Count == 0)
                throw new ArgumentException(option + " wants a value behind it");
            return rest.Dequeue();
        }

        private static uint Level(string name)
        {
            int level = Array.IndexOf(Levels, name);
            if (level < 0)
                throw new ArgumentException("--log-level wants one of " + string.Join(", ", Levels) + ", not '" + name + "'");
            return (uint)level;
        }
    }
}
