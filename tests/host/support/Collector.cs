using System;

namespace Orbelantine.HostTests
{
    public static class Collector
    {
        /// <summary>Collects what can be collected, finalizers included.</summary>
        public static void Run()
        {
            for (int i = 0; i < 2; ++i)
            {
                GC.Collect();
                GC.WaitForPendingFinalizers();
            }
        }
    }
}
