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
        private readonly Timeline timeline = new Timeline();

        public Demo(Options options, StopSignal stop)
        {
            this.options = options;
            this.stop = stop;
        }

        /// <summary>The process's exit status.</summary>
        public int Run(IEnumerable<Step> steps)
        {
            using (PhoneLog phoneLog = options.PhoneLog == null ? null : new PhoneLog(options.PhoneLog))
            using (var control = new PhoneControl(options.PhoneControl))
            using (var link = new Link(options.Address, timeline))
            {
                string failure = link.Connect();
                if (failure != null)
                    return MissPhone(failure);
                Console.WriteLine("connected to " + options.Address + (steps is ICollection<Step> known ? ", playing " + known.Count + " steps" : ""));
                var player = new Player(link, control, timeline, stop);
                player.ChangePhone(1080, 2340, 1, 1);
                player.Play(steps);
                player.Settle();
                link.Disconnect();
                return Conclude(player, phoneLog);
            }
        }

        private int MissPhone(string failure)
        {
            Console.Error.WriteLine("DemoHost: no phone at " + options.Address + ": " + failure);
            Console.Error.WriteLine("Start one with 'virtual_phone --address " + options.Address + "' and the same ORBELANTINE_DEVICE_DIR,");
            Console.Error.WriteLine("or let './dev demo' do it all. The log above tells where the connection failed.");
            return NoPhone;
        }

        private int Conclude(Player player, PhoneLog phoneLog)
        {
            if (stop.IsInterrupted)
            {
                Console.Error.WriteLine("DemoHost: interrupted after " + player.Sent.KeyPresses + " keys and " + player.Sent.Clicks +
                                        " clicks; nothing is held");
                return Interrupted;
            }
            Console.WriteLine();
            Console.WriteLine(timeline);
            if (phoneLog != null)
                return Compare(player, phoneLog);
            Console.WriteLine("sent " + player.Sent.KeyPresses + " keys and " + player.Sent.Clicks +
                              " clicks; --phone-log compares them with what the phone received");
            return Agrees;
        }

        private int Compare(Player player, PhoneLog phoneLog)
        {
            // The phone writes down what it has received in its own time.
            phoneLog.WaitFor(player.Sent, Patience, stop);
            var summary = new Summary(player.Sent, phoneLog.Received);
            Console.WriteLine();
            Console.WriteLine(summary);
            Console.WriteLine();
            if (player.Targets.Count > 0)
                Console.WriteLine(new Aim(player.Targets, phoneLog.Landings));
            if (summary.Differences.Count > 0)
                Console.Error.WriteLine("DemoHost: the phone received something else than was sent: " + string.Join(", ", summary.Differences));
            else
                Console.WriteLine("The phone received all that was sent.");
            return summary.Differences.Count > 0 ? Differs : Agrees;
        }
    }
}
