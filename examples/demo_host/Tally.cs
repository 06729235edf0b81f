using System.Text;

namespace Orbelantine.DemoHost
{
    /// <summary>What a session did, counted alike by who sent it and by who received it.</summary>
    public sealed class Tally
    {
        public StringBuilder Text { get; } = new StringBuilder();
        /// <summary>Keys that went down, Shift included.</summary>
        public int KeyPresses { get; set; }
        public int Moves { get; set; }
        public int Dx { get; set; }
        public int Dy { get; set; }
        public int Clicks { get; set; }
        /// <summary>Mouse reports that neither move nor change a button.</summary>
        public int Scrolls { get; set; }
        /// <summary>The sum of what the reports' wheels carry.</summary>
        public int Wheel { get; set; }
        public int Reports { get; set; }
        public int Errors { get; set; }
    }
}
