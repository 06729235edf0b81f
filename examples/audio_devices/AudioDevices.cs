using System;
using System.Threading;
using System.Threading.Tasks;
using Orbelantine.Swig.audio;

static class AudioDevices
{
    // AudioDevices [SECONDS]: until then, until Ctrl-C or the end of standard input.
    static void Main(string[] arguments)
    {
        int limit = arguments.Length == 0 ? Timeout.Infinite : 1000 * int.Parse(arguments[0]);
        var over = new ManualResetEventSlim();
        Console.CancelKeyPress += (sender, pressed) =>
        {
            pressed.Cancel = true;
            over.Set();
        };
        Task.Run(() =>
        {
            Console.In.ReadToEnd();
            over.Set();
        });

        using (var audio = new AudioDevicesState())
        {
            // On threads of the library, where only what returns at once may be called.
            audio.onStateChanged.connect(state => Console.WriteLine("devices: " + state));
            audio.onMute.connect((isOut, isMute) => Console.WriteLine("mute: " + (isOut ? "speakers" : "microphone")));
            audio.onBtHeadsetPluggedIn.connect(isThere => Console.WriteLine("headset: " + isThere));
            audio.start(null);
            over.Wait(limit);
            audio.stop();
        }
    }
}
