using System;

namespace Orbelantine.DemoHost
{
    /// <summary>One thing that a user does, or that becomes of the phone.</summary>
    public sealed class Step
    {
        public Step(string meaning, Action<Player> play)
        {
            Meaning = meaning;
            Play = play;
        }

        public string Meaning { get; }
        public Action<Player> Play { get; }
    }
}
