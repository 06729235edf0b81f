using System;
using System.Linq;

namespace Orbelantine.HostTests
{
    public static class Program
    {
        /// <summary>HostTests [-v] [FILTER]: FILTER is a part of the names of the tests to run.
        /// HostTests --mistakes [FILTER]: makes mistakes, each in a process of its own.</summary>
        public static int Main(string[] arguments)
        {
            string[] words = arguments.Where(argument => !argument.StartsWith("-")).ToArray();
            string name = words.FirstOrDefault() ?? "";
            if (arguments.Contains("--mistakes"))
                return MistakeRunner.RunAll(name) ? 0 : 1;
            using (new TestLog())
            {
                if (!arguments.Contains("--mistake"))
                    return new TestRunner(arguments.Contains("-v")).Run(name) ? 0 : 1;
                MistakeRunner.RunHere(name);
                return 0;
            }
        }
    }
}
