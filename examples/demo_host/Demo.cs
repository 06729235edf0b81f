using System;
using System.Collections.Generic;
using System.Linq;

namespace Orbelantine.DemoHost
{
    /// <summary>One run: connects, plays, and compares what the phone received.</summary>
    public sealed class Demo
    {
        private const int Agrees = 0;
        private const int Differs = 1;
        private const int NoPhone = 3;
        private const int PeersFailed = 4;
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
            var known = steps as ICollection<Step>;
            using (PhoneLog phoneLog = options.PhoneLog == null ? null : new PhoneLog(options.PhoneLog))
            using (var control = new ControlPipe(options.PhoneControl))
            using (var stackControl = new ControlPipe(options.StackControl))
            using (var peers = new Peers(stackControl, timeline, stop))
            using (var link = new Link(options.Address, timeline))
            {
                var player = new Player(link, peers, control, timeline, stop)
                {
                    Greeting = "connected to " + options.Address + (known != null ? ", playing " + known.Count + " steps" : ""),
                    EndsAtFailure = known != null,
                };
                // A session with peers may make its phone known first.
                if (known != null && known.Any(step => step.Kind == StepKind.Peers) || player.Connect())
                    player.Play(steps);
                player.Disconnect();
                return player.LinkFailure != null ? MissPhone(player.LinkFailure) : Conclude(player, phoneLog);
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
            if (player.HasFailed && player.EndsAtFailure)
                return PeersFailed;
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
