using System;
using System.Collections.Generic;

namespace Orbelantine.DemoHost
{
    /// <summary>Plays steps over the surface and counts what is meant to reach the phone.</summary>
    public sealed class Player
    {
        // What a report carries of a wheel step at most.
        private const int MaxWheel = 3;
        private const int ParkingMs = 150;

        private readonly Link link;
        private readonly Peers peers;
        private readonly ControlPipe phone;
        private readonly Timeline timeline;
        private readonly StopSignal stop;
        private int phoneWidth;
        private int phoneHeight;
        private bool isConnected;

        /// <summary>Once `stop` is set, what remains to be played is skipped; a key or button that is down
        /// comes up first.</summary>
        public Player(Link link, Peers peers, ControlPipe phone, Timeline timeline, StopSignal stop)
        {
            this.link = link;
            this.peers = peers;
            this.phone = phone;
            this.timeline = timeline;
            this.stop = stop;
        }

        /// <summary>Said once the link is there.</summary>
        public string Greeting { get; set; }
        /// <summary>Whether a step with peers that fails ends the session.</summary>
        public bool EndsAtFailure { get; set; }
        /// <summary>Why there is no link; null while there was no need for one, or it is there.</summary>
        public string LinkFailure { get; private set; }
        public bool HasFailed { get; private set; }

        public Tally Sent { get; } = new Tally();
        /// <summary>Of the clicks, in phone pixels.</summary>
        public List<(int X, int Y)> Targets { get; } = new List<(int X, int Y)>();

        /// <summary>The link is connected for the first step that needs it.</summary>
        public void Play(IEnumerable<Step> steps)
        {
            foreach (Step step in steps)
                if (!stop.IsSet && !Play(step))
                    break;
            // What is held is let go of, however the session ended.
            link.Surface.LoseFocus();
        }

        /// <summary>Brings the link up, unless it is; false without a phone.</summary>
        public bool Connect()
        {
            if (isConnected)
                return true;
            LinkFailure = link.Connect();
            if (LinkFailure != null)
                return false;
            isConnected = true;
            Console.WriteLine(Greeting);
            ChangePhone(1080, 2340, 1, 1);
            return true;
        }

        public void Disconnect()
        {
            if (!isConnected)
                return;
            Settle();
            link.Disconnect();
        }

        public void Press(Key key)
        {
            if (stop.IsSet)
                return;
            Note("key");
            link.Surface.Press(key);
            Sent.KeyPresses += key.Shift ? 2 : 1;
            Sent.Text.Append(key.Text);
        }

        /// <summary>Waits until all that was played has gone out, and the phone's cursor is parked again.</summary>
        public void Settle()
        {
            link.Flush();
            stop.Pause(ParkingMs);
        }

        public void ResizeSurface(int width, int height)
        {
            Settle();
            link.Surface.Resize(width, height);
        }

        public void ChangePhone(int width, int height, double scale, int rotation)
        {
            Settle();
            Note("phone " + width + " x " + height + ", turned to " + rotation);
            phone.Send(FormattableString.Invariant($"screen {width} {height} {scale} {rotation}"));
            phone.Send("acceleration " + (scale > 1 ? "curve" : "android"));
            phoneWidth = width;
            phoneHeight = height;
            link.Surface.onRotationChanged.call(rotation);
            link.Surface.onLogicalDimensionsChanged.call(width, height, scale, 0);
        }

        public void Click(int x, int y)
        {
            Note("click");
            Aim(x, y);
            link.Surface.Click(x, y);
        }

        public void Touch(int x, int y)
        {
            Note("touch");
            Aim(x, y);
            link.Surface.Touch(x, y);
        }

        public void Drag(int fromX, int fromY, int toX, int toY)
        {
            Note("drag");
            Aim(fromX, fromY);
            link.Surface.Drag(fromX, fromY, toX, toY, stop);
        }

        public void Wheel(int amount, int x, int y)
        {
            Note("wheel");
            link.Surface.Turn(amount, x, y);
            Sent.Turn(Math.Max(-MaxWheel, Math.Min(MaxWheel, amount)));
        }

        public void Wait(int pauseMs)
        {
            stop.Pause(pauseMs);
        }

        public void SetIdleTimeout(int milliseconds)
        {
            Note("idle after " + milliseconds + " ms");
            link.SetIdleTimeout(milliseconds);
        }

        public void Sleep()
        {
            Settle();
            Note("sleep");
            link.Sleep();
        }

        public void Wake()
        {
            Note("wake");
            link.Wake();
        }

        public void Vanish(int milliseconds)
        {
            Settle();
            Note("the phone vanishes for " + milliseconds + " ms");
            phone.Send("vanish " + milliseconds);
            stop.Pause(milliseconds + ParkingMs);
        }

        public void Refresh()
        {
            Settle();
            Note("refresh");
            string failure = link.Refresh();
            if (failure != null)
                timeline.Add(Timeline.Link, failure);
        }

        public void Discover()
        {
            Note("discover");
            peers.Discover();
        }

        public void Pair(string name)
        {
            Note("pair " + name);
            peers.Pair(name);
        }

        public void Approve(string name)
        {
            Note("approve " + name);
            peers.Approve(name);
        }

        public void Unpair(string name)
        {
            Note("unpair " + name);
            peers.Unpair(name);
        }

        public void SwitchRadio(bool on)
        {
            Note("radio " + (on ? "on" : "off"));
            peers.SwitchRadio(on);
        }

        // False if the session is over with it.
        private bool Play(Step step)
        {
            if (step.Kind == StepKind.Input && !Connect())
                return false;
            try
            {
                step.Play(this);
                return true;
            }
            catch (PeerException failure)
            {
                if (stop.IsSet)
                    return false;
                HasFailed = true;
                Console.Error.WriteLine("DemoHost: " + failure.Message);
                return !EndsAtFailure;
            }
        }

        private void Aim(int x, int y)
        {
            int targetX = x * phoneWidth / link.Surface.Width;
            int targetY = y * phoneHeight / link.Surface.Height;
            Targets.Add((targetX, targetY));
            ++Sent.Clicks;
            phone.Send("target " + targetX + " " + targetY);
        }

        private void Note(string what)
        {
            timeline.Add(Timeline.Input, what);
        }
    }
}
