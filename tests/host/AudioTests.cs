using System;
using System.Collections.Concurrent;
using System.Linq;
using Orbelantine.Swig.audio;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>The computer's audio devices, on a computer without any.</summary>
    public sealed class AudioTests : IDisposable
    {
        private const int PatienceMs = 20000;
        // Each direction is looked up, and the start's end is told.
        private static readonly string[] Start =
            { "headset False", "NoAudioInOut", "headset False", "NoAudioInOut", "NoAudioInOut" };

        private readonly AudioDevicesState audio = new AudioDevicesState();
        // What the signals told, in words.
        private readonly BlockingCollection<string> told = new BlockingCollection<string>();

        public AudioTests()
        {
            NoSound.Set();
            audio.onStateChanged.connect(state => told.Add(state.ToString())).Dispose();
            audio.onMute.connect((isOut, isMute) => told.Add("mute " + isOut + " " + isMute)).Dispose();
            audio.onBtHeadsetPluggedIn.connect(isThere => told.Add("headset " + isThere)).Dispose();
        }

        public void Dispose() => audio.Dispose();

        public void EachStartTellsThatThereIsNoDevice()
        {
            Assert.Equal(AudioState.AudioAvailable, audio.getAudioState(), "before the start");
            using (var never = ErrorCodeCallback.From(code => told.Add("completed")))
                foreach (ErrorCodeCallback callback in new[] { null, never })
                {
                    audio.start(callback);
                    Assert.Sequence(Start, Start.Select(line => Next()));
                    Assert.Equal(AudioState.NoAudioInOut, audio.getAudioState());
                    Assert.True(!audio.isBtHeadsetPluggedIn(), "there is a headset");
                    audio.stop();
                    Assert.Equal(0, told.Count, "told besides");
                }
        }

        public void SlotsStayConnectedAfterAStop()
        {
            audio.stop();
            audio.onMute.call(true, false);
            audio.onBtHeadsetPluggedIn.call(true);
            audio.onStateChanged.call(AudioState.NoAudioIn);
            Assert.Sequence(new[] { "mute True False", "headset True", "NoAudioIn" }, told);
        }

        private string Next()
        {
            Assert.True(told.TryTake(out string line, PatienceMs), "waited in vain");
            return line;
        }
    }
}
