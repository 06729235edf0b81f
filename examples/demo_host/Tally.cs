using System;
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
        /// <summary>What the reports' wheels carry, each direction on its own, so that turns that cancel
        /// out still count.</summary>
        public int WheelUp { get; private set; }
        public int WheelDown { get; private set; }
        public int Errors { get; set; }

        public void Turn(int steps)
        {
            WheelUp += Math.Max(0, steps);
            WheelDown += Math.Max(0, -steps);
        }
    }
}
