namespace Orbelantine.DemoHost
{
    /// <summary>How a pairing or unpairing ended.</summary>
    public sealed class PeerOutcome
    {
        public PeerOutcome(int error, string failure)
        {
            Error = error;
            Failure = failure;
        }

        /// <summary>0 for success.</summary>
        public int Error { get; }
        /// <summary>Null for success.</summary>
        public string Failure { get; }
    }
}
