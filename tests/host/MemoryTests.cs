using System;
using System.IO;
using System.Linq;
using System.Runtime.InteropServices;
using Orbelantine.Swig.avstack_base;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>What is made and deleted again leaves nothing behind.</summary>
    public sealed class MemoryTests
    {
        private const int Pairs = 200000;
        // Less than the smallest native block for each pair.
        private const long BoundKb = 4096;

        public void ErrorCodesLeftToTheCollector() => LeavesNothing(() => HidErrors.getErrorCode(21120));

        public void StoresWithTheirTexts() =>
            LeavesNothing(() =>
            {
                using (var store = new KVStore())
                {
                    store.setStringAt("key", "a text that is longer than a small one");
                    store.getStringAt("key");
                    store.getWStringAt("key", "another");
                }
            });

        public void BuffersOnTheirWayToAnElementOfTheHost()
        {
            using (var target = new Dropping())
            using (var packer = new HIDEventsPacker(new KVStore()))
            {
                packer.registerTarget(target);
                LeavesNothing(() =>
                {
                    using (var buffer = new IInputMediaBufferMouse(1, 2, 0))
                    using (IMediaBuffer copy = buffer.copy())
                        packer.onFrame(copy);
                }, 4);
            }
        }

        public void CallbackObjectsWithTheirFunctionsAndCodes() =>
            LeavesNothing(() =>
            {
                using (error_code code = HidErrors.getErrorCode(21120))
                using (var recorder = new ForgettingRecorder())
                using (var function = new ErrorCodeCallback(recorder))
                    function.call(code);
            }, 20);

        public void Slots()
        {
            using (var device = new HIDDeviceClient())
            using (var function = new ErrorCodeCallback(new ForgettingRecorder()))
            {
                SignalErrorCodeCallback signal = device.onDisconnected;
                LeavesNothing(() =>
                {
                    using (connection slot = signal.connect(function))
                        slot.disconnect();
                });
            }
        }

        private sealed class Dropping : IMediaElement
        {
            public override void onFrame(IMediaBuffer buffer) => buffer.Dispose();
        }

        private sealed class ForgettingRecorder : ErrorCodeCallbackImpl
        {
            public override void call(error_code code) { code.Dispose(); }
        }

        // What leaks grows in every round; what a runtime takes for itself comes and goes. The first two
        // rounds use up what earlier tests have left free. `part` makes the rounds of a slow action shorter,
        // and the bound in proportion.
        private static void LeavesNothing(Action action, int part = 1)
        {
            int count = Pairs / part;
            Round(action, count);
            Round(action, count);
            long least = long.MaxValue;
            for (int round = 0; round < 4 && least >= BoundKb / part; ++round)
                least = Math.Min(least, Round(action, count));
            Assert.True(least < BoundKb / part, count + " of them leave " + least + " kB, every time");
        }

        // By how much the process grew, in kB.
        private static long Round(Action action, int count)
        {
            long before = ResidentKb();
            for (int i = 0; i < count; ++i)
                action();
            Collector.Run();
            return ResidentKb() - before;
        }

        private static long ResidentKb()
        {
            malloc_trim(UIntPtr.Zero);
            string line = File.ReadLines("/proc/self/status").First(text => text.StartsWith("VmRSS:"));
            return long.Parse(line.Split(new[] { ' ', '\t' }, StringSplitOptions.RemoveEmptyEntries)[1]);
        }

        [DllImport("libc")]
        private static extern int malloc_trim(UIntPtr kept);
    }
}
