using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;

namespace Orbelantine.HostTests
{
    /// <summary>What is special about a mistake.</summary>
    [AttributeUsage(AttributeTargets.Method)]
    public sealed class MistakeAttribute : Attribute
    {
        /// <summary>The method that lists what this one is to be called with.</summary>
        public string For { get; set; }

        /// <summary>The process is to end by itself with this on standard error.</summary>
        public string Dies { get; set; }
    }

    /// <summary>Runs each mistake, a public method of a class ...Mistakes that throws unless the answer is the
    /// right one, in a process of its own: the answer comes within seconds, or it hangs or ends its host.</summary>
    public static class MistakeRunner
    {
        private const int PatienceMs = 5000;
        // For the runtime's start, before the mistake's time begins.
        private const int StartMs = 30000;
        private const string Started = "started";
        private const int Kill = 9;

        private sealed class Case
        {
            public string Name;
            public string Dies;
            public Action Run;
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
            // A group of its own, that of the phones which it starts.
            setpgid(0, 0);
            Case mistake = Cases().Single(candidate => candidate.Name == name);
            Console.WriteLine(Started);
            mistake.Run();
        }

        private static IEnumerable<Case> Cases() =>
            from type in typeof(MistakeRunner).Assembly.GetTypes()
            where type.Name.EndsWith("Mistakes")
            from method in type.GetMethods(BindingFlags.Static | BindingFlags.Public)
            where method.ReturnType == typeof(void)
            orderby type.Name, method.MetadataToken
            from mistake in CasesOf(method, method.GetCustomAttribute<MistakeAttribute>() ?? new MistakeAttribute())
            select mistake;

        private static IEnumerable<Case> CasesOf(MethodInfo method, MistakeAttribute special)
        {
            string name = method.DeclaringType.Name + "." + method.Name;
            if (special.For == null)
                return new[] { new Case { Name = name, Dies = special.Dies, Run = (Action)Delegate.CreateDelegate(typeof(Action), method) } };
            var run = (Action<string>)Delegate.CreateDelegate(typeof(Action<string>), method);
            var arguments = (IEnumerable<string>)method.DeclaringType.GetMethod(special.For).Invoke(null, null);
            return arguments.Select(argument => new Case { Name = name + ":" + argument, Dies = special.Dies, Run = () => run(argument) });
        }

        // The reason why it is not as it should be, or null.
        private static string RunApart(Case mistake)
        {
            string program = typeof(MistakeRunner).Assembly.Location;
            var start = new ProcessStartInfo(Process.GetCurrentProcess().MainModule.FileName,
                                             "\"" + program + "\" --mistake \"" + mistake.Name + "\"")
            { UseShellExecute = false, RedirectStandardOutput = true, RedirectStandardError = true };
            using (Process process = Process.Start(start))
            {
                var errors = process.StandardError.ReadToEndAsync();
                var output = process.StandardOutput.ReadLineAsync();
                bool hasStarted = output.Wait(StartMs) && output.Result == Started;
                bool hasEnded = process.WaitForExit(hasStarted ? PatienceMs : StartMs);
                // What is left of it, the phones that it has started included.
                kill(-process.Id, Kill);
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

        [DllImport("libc")]
        private static extern int setpgid(int process, int group);

        [DllImport("libc")]
        private static extern int kill(int process, int signal);
    }
}
