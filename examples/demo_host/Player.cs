using System;
using System.Collections.Generic;
using Orbelantine.Swig.input;

namespace Orbelantine.DemoHost
{
    /// <summary>Plays steps on a phone and counts what it sends.</summary>
    public sealed class Player
    {
        private readonly HIDReportProvider provider;
        private readonly StopSignal stop;

        /// <summary>Once `stop` is set, what remains to be played is skipped; a key or button that is down
        /// comes up first.</summary>
        public Player(HIDReportProvider provider, StopSignal stop)
        {
            this.provider = provider;
            this.stop = stop;
        }

        public Tally Sent { get; } = new Tally();

        public void Play(IEnumerable<Action<Player>> steps)
        {
            foreach (Action<Player> step in steps)
                step(this);
        }

        public void Press(Key key)
        {
            if (stop.IsSet)
                return;
            if (key.Shift)
                SendKey(Keyboard.LeftShift, true);
            SendKey(key.ScanCode, true);
            SendKey(key.ScanCode, false);
            if (key.Shift)
                SendKey(Keyboard.LeftShift, false);
            Sent.Text.Append(key.Text);
        }

        public void Move(int dx, int dy)
        {
            if (stop.IsSet)
                return;
            provider.sendMouseMove(dx, dy);
            ++Sent.Reports;
            ++Sent.Moves;
            Sent.Dx += dx;
            Sent.Dy += dy;
        }

        public void Click()
        {
            if (stop.IsSet)
                return;
            provider.sendMouseLeftClick(true);
            provider.sendMouseLeftClick(false);
            Sent.Reports += 2;
            ++Sent.Clicks;
        }

        /// <summary>The provider's report of a scroll has a wheel of 0: the amount does not travel.</summary>
        public void Scroll(int amount)
        {
            if (stop.IsSet)
                return;
            provider.sendMouseScroll(amount);
            ++Sent.Reports;
            ++Sent.Scrolls;
        }

        public void Wait(int pauseMs)
        {
            stop.Pause(pauseMs);
        }

        private void SendKey(byte scanCode, bool pressed)
        {
            provider.sendKey(scanCode, pressed);
            ++Sent.Reports;
            Sent.KeyPresses += pressed ? 1 : 0;
        }
    }
}
