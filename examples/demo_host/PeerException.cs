using System;

namespace Orbelantine.DemoHost
{
    /// <summary>A step with peers has failed; the message is a sentence that says why.</summary>
    public sealed class PeerException : Exception
    {
        public PeerException(string message)
            : base(message)
        {
        }
    }
}
