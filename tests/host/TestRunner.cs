using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;

namespace Orbelantine.HostTests
{
    /// <summary>Runs the tests of this assembly one after the other: each public method of a class
    /// ...Tests, which is made anew for it.</summary>
    public sealed class TestRunner
    {
        private readonly bool verbose;
        private int passed;
        private int failed;

        public TestRunner(bool verbose) => this.verbose = verbose;

        /// <summary>Runs each test whose name, Class.Method, contains the filter; false if one failed or
        /// there is none.</summary>
        public bool Run(string filter)
        {
            foreach (MethodInfo test in Tests().Where(test => NameOf(test).Contains(filter)))
                RunOne(test);
            Console.WriteLine(passed + " passed, " + failed + " failed");
            return failed == 0 && passed > 0;
        }

        private static IEnumerable<MethodInfo> Tests() =>
            from type in typeof(TestRunner).Assembly.GetTypes()
            where type.Name.EndsWith("Tests")
            from method in type.GetMethods(BindingFlags.Instance | BindingFlags.Public | BindingFlags.DeclaredOnly)
            where method.Name != "Dispose"
            orderby type.Name, method.MetadataToken
            select method;

        private static string NameOf(MethodInfo test) => test.DeclaringType.Name + "." + test.Name;

        private void RunOne(MethodInfo test)
        {
            // Said beforehand, for a test that ends the process.
            if (verbose)
                Console.WriteLine("running " + NameOf(test));
            try
            {
                object fixture = Activator.CreateInstance(test.DeclaringType);
                using (fixture as IDisposable)
                    ((Action)Delegate.CreateDelegate(typeof(Action), fixture, test))();
                ++passed;
            }
            catch (SkippedException skipped)
            {
                Console.WriteLine("skipped " + NameOf(test) + ": " + skipped.Message);
            }
            catch (Exception thrown)
            {
                ++failed;
                string reason = thrown is AssertionException ? thrown.Message : thrown.ToString();
                Console.WriteLine("FAILED " + NameOf(test) + ": " + reason.Replace("\r", "").Replace("\n", " |"));
            }
        }
    }
}
