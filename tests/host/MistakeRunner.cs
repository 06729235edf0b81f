using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;

namespace Orbelantine.HostTests
{
    /// <summary>A public static method in which a host makes a mistake, or one that gives names of such to
    /// a method that takes one. It throws unless the answer is the right one.</summary>
    [AttributeUsage(AttributeTargets.Method)]
    public sealed class MistakeAttribute : Attribute
    {
        /// <summary>The method that lists what this one is to be called with.</summary>
        public string For { get; set; }

        /// <summary>The process is to end by itself with this on standard error.</summary>
        public string Dies { get; set; }
    }

    /// <summary>Runs each mistake in a process of its own: the answer comes within seconds, or the mistake
    /// hangs or ends its host.</summary>
    public sealed class MistakeRunner
    {
        private const int PatienceMs = 5000;
        // For the runtime's start, before the mistake's time begins.
        private const int StartMs = 30000;
        private const string Started = "started";
        private const int Kill = 9;
        private const string MarkVariable = "ORBELANTINE_TEST_MISTAKE";

        private sealed class Case
        {
            public MethodInfo Method;
            public string Argument;

            public string Name
            {
                get { return Method.DeclaringType.Name + "." + Method.Name + (Argument == null ? "" : ":" + Argument); }
            }

            public string Dies
            {
                get { return Method.GetCustomAttribute<MistakeAttribute>().Dies; }
            }
        }

        /// <summary>Makes every mistake whose name contains the filter; false if one was answered wrongly or
        /// there is none.</summary>
        public static bool RunAll(string filter)
        {
            int passed = 0;
            int failed = 0;
            foreach (Case mistake in Cases().Where(mistake => mistake.Name.Contains(filter)))
            {
                string complaint = RunApart(mistake);
                passed += complaint == null ? 1 : 0;
                failed += complaint == null ? 0 : 1;
                if (complaint != null)
                    Console.WriteLine("FAILED " + mistake.Name + ": " + complaint.Replace("\r", "").Replace("\n", " |"));
            }
            Console.WriteLine(passed + " mistakes answered, " + failed + " not");
            return failed == 0 && passed > 0;
        }

        /// <summary>Makes one mistake in this process.</summary>
        public static void RunHere(string name)
        {
            Case mistake = Cases().Single(candidate => candidate.Name == name);
            Console.WriteLine(Started);
            if (mistake.Argument == null)
                ((Action)Delegate.CreateDelegate(typeof(Action), mistake.Method))();
            else
                ((Action<string>)Delegate.CreateDelegate(typeof(Action<string>), mistake.Method))(mistake.Argument);
        }

        private static IEnumerable<Case> Cases()
        {
            return from type in typeof(MistakeRunner).Assembly.GetTypes()
                   from method in type.GetMethods(BindingFlags.Static | BindingFlags.Public)
                   where method.IsDefined(typeof(MistakeAttribute), false)
                   orderby type.Name, method.MetadataToken
                   from argument in ArgumentsOf(method)
                   select new Case { Method = method, Argument = argument };
        }

        private static IEnumerable<string> ArgumentsOf(MethodInfo method)
        {
            string list = method.GetCustomAttribute<MistakeAttribute>().For;
            return list == null ? new string[] { null } : (IEnumerable<string>)method.DeclaringType.GetMethod(list).Invoke(null, null);
        }

        // The reason why it is not as it should be, or null.
        private static string RunApart(Case mistake)
        {
            string mark = Guid.NewGuid().ToString("N");
            string program = typeof(MistakeRunner).Assembly.Location;
            var start = new ProcessStartInfo(Process.GetCurrentProcess().MainModule.FileName,
                                             "\"" + program + "\" --mistake \"" + mistake.Name + "\"")
            { UseShellExecute = false, RedirectStandardOutput = true, RedirectStandardError = true };
            start.EnvironmentVariables[MarkVariable] = mark;
            using (Process process = Process.Start(start))
            {
                var errors = process.StandardError.ReadToEndAsync();
                var output = process.StandardOutput.ReadLineAsync();
                bool hasStarted = output.Wait(StartMs) && output.Result == Started;
                bool hasEnded = process.WaitForExit(hasStarted ? PatienceMs : StartMs);
                EndAll(mark);
                process.WaitForExit(StartMs);
                return hasEnded ? Judge(mistake, process.ExitCode, errors.Result) : "no answer in " + PatienceMs + " ms";
            }
        }

        private static string Judge(Case mistake, int status, string errors)
        {
            if (mistake.Dies == null)
                return status == 0 ? null : "ended with " + status + ": " + errors;
            if (status == 0)
                return "went on";
            return errors.Contains(mistake.Dies) ? null : "ended with " + status + " and without '" + mistake.Dies + "': " + errors;
        }

        // What is left of a mistake, the phones that it has started included.
        private static void EndAll(string mark)
        {
            foreach (string process in Directory.GetDirectories("/proc").Where(folder => IsMarked(folder + "/environ", mark)))
                kill(int.Parse(Path.GetFileName(process)), Kill);
        }

        private static bool IsMarked(string environment, string mark)
        {
            try
            {
                return File.ReadAllText(environment).Contains(MarkVariable + "=" + mark);
            }
            catch (Exception unreadable) when (unreadable is IOException || unreadable is UnauthorizedAccessException)
            {
                return false;
            }
        }

        [DllImport("libc")]
        private static extern int kill(int process, int signal);
    }
}
