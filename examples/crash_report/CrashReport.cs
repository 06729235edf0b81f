using System;
using Orbelantine.Swig.common;

/// <summary>Shows the crashes that earlier runs left behind; with --crash it leaves one.</summary>
internal static class CrashReport
{
    private static int Main(string[] args)
    {
        using (var handler = new CExceptionHandler())
        {
            if (!handler.SetHandler())
            {
                Console.Error.WriteLine("Another object of this process records its crashes already.");
                return 1;
            }
            int crashes = 0;
            foreach (string line in handler.GetLatestCrashes())
            {
                // An empty line ends a crash. Here a host would send what it has collected.
                Console.WriteLine(line.Length > 0 ? "  " + line : "crash " + ++crashes + " ends");
            }
            Console.WriteLine(crashes + " crashes since the last run");
            if (args.Length > 0 && args[0] == "--crash")
                handler.Crash();
        }
        return 0;
    }
}
