using System.Text;

namespace Orbelantine.DemoHost
{
    /// <summary>What a session did, counted alike by who sent it and by who received it.</summary>
    public sealed class Tally
    {
        public StringBuilder Text { get; } = new StringBuilder();
        /// <summary>Keys that went down, Shift included.</summary>
        public int KeyPresses { get; set; }
        /// <summary>Presses of the left button.</summary>
        public int Clicks { get; set; }
        /// <summary>The sum of what the reports' wheels carry.</summary>
        public int Wheel { get; set; }
        public int Errors { get; set; }
    }
}
