using System;
using System.Diagnostics;
using System.IO;
using System.Runtime.InteropServices;
using System.Threading;

namespace Orbelantine.HostTests
{
    /// <summary>A program that stands for what is around the computer, as long as this lives. An environment
    /// variable names it; without that the test is skipped.</summary>
    public abstract class VirtualProgram : IDisposable
    {
        private const int PatienceMs = 20000;
        private const int Terminate = 15;

        private readonly Process process;

        protected VirtualProgram(string variable, Func<TestFolder, string> arguments)
        {
            string program = Environment.GetEnvironmentVariable(variable);
            if (string.IsNullOrEmpty(program))
                throw new SkippedException(variable + " names no program");
            process = Process.Start(new ProcessStartInfo(program, arguments(Folder) + " --ready-file " + Folder.File("ready"))
            {
                UseShellExecute = false,
                RedirectStandardOutput = true
            });
            Wait(program + " to be ready", () => File.Exists(Folder.File("ready")) || process.HasExited);
            if (process.HasExited)
                throw new SkippedException(program + " does not run here");
        }

        protected TestFolder Folder { get; } = new TestFolder();

        /// <summary>Ends at once, as what is out of reach.</summary>
        public void Vanish()
        {
            process.Kill();
            process.WaitForExit();
        }

        public void Dispose()
        {
            if (!process.HasExited)
                kill(process.Id, Terminate);
            if (!process.WaitForExit(PatienceMs))
                process.Kill();
            process.Dispose();
            Folder.Dispose();
        }

        protected static void Wait(string what, Func<bool> condition)
        {
            Stopwatch waited = Stopwatch.StartNew();
            while (!condition())
            {
                if (waited.ElapsedMilliseconds > PatienceMs)
                    throw new AssertionException("waited in vain for " + what);
                Thread.Sleep(5);
            }
        }

        /// <summary>Environment.SetEnvironmentVariable is not seen by native code on every runtime.</summary>
        public static void SetForNativeCode(string variable, string value)
        {
            setenv(variable, value, 1);
        }

        [DllImport("libc")]
        private static extern int setenv(string name, string value, int overwrite);

        [DllImport("libc")]
        private static extern int kill(int process, int signal);
    }
}
