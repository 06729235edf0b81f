using System;

namespace Orbelantine.DemoHost
{
    public enum StepKind
    {
        /// <summary>Goes over the link.</summary>
        Input,
        /// <summary>Is of the computer and its peers, link or no link.</summary>
        Peers,
        Pause,
    }

    /// <summary>One thing that a user does, or that becomes of the phone.</summary>
    public sealed class Step
    {
        public Step(string meaning, StepKind kind, Action<Player> play)
        {
            Meaning = meaning;
            Kind = kind;
            Play = play;
        }

        public string Meaning { get; }
        public StepKind Kind { get; }
        public Action<Player> Play { get; }
    }
}
