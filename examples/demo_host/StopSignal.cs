using System;
using System.Threading;

namespace Orbelantine.DemoHost
{
    /// <summary>Ends a session early. Any thread may set it.</summary>
    public sealed class StopSignal : IDisposable
    {
        private readonly ManualResetEvent stopped = new ManualResetEvent(false);

        /// <summary>The user wants to end.</summary>
        public bool IsInterrupted { get; private set; }

        public bool IsSet
        {
            get { return stopped.WaitOne(0); }
        }

        public void Interrupt()
        {
            IsInterrupted = true;
            stopped.Set();
        }

        /// <summary>Pauses, for less if it is set meanwhile.</summary>
        public void Pause(int milliseconds)
        {
            stopped.WaitOne(milliseconds);
        }

        public void Dispose()
        {
            stopped.Dispose();
        }
    }
}
