using System;
using System.Linq;

namespace Orbelantine.HostTests
{
    public static class Program
    {
        /// <summary>HostTests [-v] [FILTER]: FILTER is a part of the names of the tests to run.</summary>
        public static int Main(string[] arguments)
        {
            bool verbose = arguments.Contains("-v");
            string filter = arguments.FirstOrDefault(argument => argument != "-v") ?? "";
            using (new TestLog())
                return new TestRunner(verbose).Run(filter) ? 0 : 1;
        }
    }
}
