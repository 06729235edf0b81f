using System;
using System.Linq;
using System.Runtime.CompilerServices;
using System.Threading;
using Orbelantine.Swig.audio;

namespace Orbelantine.HostTests
{
    /// <summary>The state of the audio devices, used as it should not be.</summary>
    public static class AudioMistakes
    {
        private static AudioDevicesState Left { get; set; }

        public static void AStopThatWouldWaitForItsOwnCallbackIsToldSo() => InSignal(audio =>
        {
            var thrown = Assert.Throws<InvalidOperationException>(audio.stop);
            Assert.True(thrown.Message.Contains("on another thread"), thrown.Message);
            audio.getAudioState();
        });

        public static void DevicesMayEndInTheirOwnSignal() => InSignal(audio => audio.Dispose());

        public static void DevicesMayBeStartedAndStoppedFromManyThreads()
        {
            using (AudioDevicesState audio = NewStarted())
            {
                Thread[] threads = Enumerable.Range(0, 4).Select(i => new Thread(() =>
                {
                    for (int round = 0; round < 20; ++round)
                    {
                        audio.start(null);
                        audio.stop();
                    }
                })).ToArray();
                foreach (Thread thread in threads)
                    thread.Start();
                foreach (Thread thread in threads)
                    thread.Join();
            }
        }

        public static void DevicesLeftStartedLetTheProcessEnd()
        {
            Left = NewStarted();
            Left.onStateChanged.connect(state => Left.isBtHeadsetPluggedIn()).Dispose();
        }

        public static void DevicesLeftToTheCollectorEnd()
        {
            LeaveStarted();
            Collector.Run();
        }

        [MethodImpl(MethodImplOptions.NoInlining)]
        private static void LeaveStarted() => NewStarted();

        private static AudioDevicesState NewStarted()
        {
            NoSound.Set();
            var audio = new AudioDevicesState();
            audio.start(null);
            return audio;
        }

        private static void InSignal(Action<AudioDevicesState> action)
        {
            NoSound.Set();
            var ended = new ManualResetEventSlim();
            var audio = new AudioDevicesState();
            audio.onStateChanged.connect(state =>
            {
                action(audio);
                ended.Set();
            }).Dispose();
            audio.start(null);
            Assert.True(ended.Wait(4000), "waited in vain");
        }
    }
}
