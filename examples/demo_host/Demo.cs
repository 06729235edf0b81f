using System;
using System.Collections.Generic;

namespace Orbelantine.DemoHost
{
    /// <summary>One run: connects, plays, and compares what the phone received.</summary>
    public sealed class Demo
    {
        private const int Agrees = 0;
        private const int Differs = 1;
        private const int NoPhone = 3;
        private const int Interrupted = 130;
        private static readonly TimeSpan Patience = TimeSpan.FromSeconds(10);

        private readonly Options options;
        private readonly StopSignal stop;

        public Demo(Options options, StopSignal stop)
        {
            this.options = options;
            this.stop = stop;
        }

        /// <summary>The process's exit status.</summary>
        public int Run(IReadOnlyCollection<Action<Player>> steps)
        {
            using (PhoneLog phoneLog = options.PhoneLog == null ? null : new PhoneLog(options.PhoneLog))
            using (var link = new Link(stop))
            {
                string failure = link.Connect(options.Address);
                if (failure != null)
                    return MissPhone(failure);
                Console.WriteLine("connected to " + options.Address + ", playing " + steps.Count + " steps");
                var player = new Player(link.Provider, stop);
                player.Play(steps);
                if (phoneLog != null && !stop.IsSet)
                    phoneLog.WaitForReports(player.Sent.Reports, Patience, stop);
                return Conclude(player.Sent, phoneLog?.Received);
            }
        }

        private int MissPhone(string failure)
        {
            Console.Error.WriteLine("DemoHost: no phone at " + options.Address + ": " + failure);
            Console.Error.WriteLine("Start one with 'virtual_phone --address " + options.Address + "' and the same ORBELANTINE_DEVICE_DIR,");
            Console.Error.WriteLine("or let './dev demo' do it all. The log above tells where the connection failed.");
            return NoPhone;
        }

        private int Conclude(Tally sent, Tally received)
        {
            if (stop.IsInterrupted)
            {
                Console.Error.WriteLine("DemoHost: interrupted after " + sent.Reports + " reports; no key is held");
                return Interrupted;
            }
            if (stop.IsLost)
            {
                Console.Error.WriteLine("DemoHost: the phone went away after " + sent.Reports + " reports; start it again");
                return Differs;
            }
            if (received == null)
            {
                Console.WriteLine("sent " + sent.Reports + " reports; --phone-log compares them with what the phone received");
                return Agrees;
            }
            return Compare(sent, received);
        }

        private static int Compare(Tally sent, Tally received)
        {
            var summary = new Summary(sent, received);
            Console.WriteLine();
            Console.WriteLine(summary);
            Console.WriteLine();
            if (sent.Scrolls > 0)
                Console.WriteLine("A scroll travels without its amount through this provider: the wheel stays at 0.");
            if (summary.Differences.Count > 0)
                Console.Error.WriteLine("DemoHost: the phone received something else than was sent: " + string.Join(", ", summary.Differences));
            else
                Console.WriteLine("The phone received all that was sent.");
            return summary.Differences.Count > 0 ? Differs : Agrees;
        }
    }
}
