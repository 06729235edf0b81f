using System;
using System.IO;
using System.Text;
using Orbelantine.Swig.common;

namespace Orbelantine.DemoHost
{
    /// <summary>Plays a session of keys and mouse on a phone, by the library's exports alone.</summary>
    public static class Program
    {
        private const int Success = 0;
        private const int BadInput = 2;

        public static int Main(string[] arguments)
        {
            try
            {
                Options options = Options.Read(arguments);
                return options.WantsHelp ? ShowHelp() : Run(options);
            }
            catch (ArgumentException wrong)
            {
                return Refuse(wrong.Message + "; DemoHost --help tells more");
            }
            catch (Exception unreadable) when (unreadable is IOException || unreadable is UnauthorizedAccessException || unreadable is FormatException)
            {
                return Refuse(unreadable.Message);
            }
        }

        private static int Run(Options options)
        {
            bool isTyped = options.Session == "-" && !Console.IsInputRedirected;
            SessionReader session = isTyped ? null : ReadSession(options.Session);
            if (session != null && session.Complaints.Count > 0)
            {
                session.Complaints.ForEach(Console.Error.WriteLine);
                return BadInput;
            }
            OpenLog(options);
            using (var stop = new StopSignal())
            {
                Console.CancelKeyPress += (sender, key) =>
                {
                    // The process goes on, to let go of what is held down.
                    key.Cancel = true;
                    stop.Interrupt();
                };
                return new Demo(options, stop).Run(isTyped ? new Conversation(stop).Steps() : session.Steps);
            }
        }

        private static SessionReader ReadSession(string path)
        {
            bool isInput = path == "-";
            var session = new SessionReader(isInput ? "standard input" : path);
            using (Stream stream = isInput ? Console.OpenStandardInput() : File.OpenRead(path))
                session.Read(new StreamReader(stream, Encoding.UTF8));
            return session;
        }

        // The log's place is settled at its first message.
        private static void OpenLog(Options options)
        {
            if (options.LogFolder != null)
                Common.set_log_folder(Path.GetFullPath(options.LogFolder));
            Common.set_log_level(options.LogLevel);
            Common.lumiport_log(2, "DemoHost", "playing " + options.Session + " on " + options.Address);
            Console.WriteLine("log: " + Common.get_log_directory() + Common.get_log_name());
        }

        private static int ShowHelp()
        {
            Console.WriteLine(Options.Usage);
            return Success;
        }

        private static int Refuse(string reason)
        {
            Console.Error.WriteLine("DemoHost: " + reason);
            return BadInput;
        }
    }
}
