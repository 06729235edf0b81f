using System;
using System.Linq;
using System.Threading;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    public sealed class CallbackTests : IDisposable
    {
        private readonly HIDDeviceClient owner = new HIDDeviceClient();
        private readonly SignalErrorCodeCallback signal;

        public CallbackTests() => signal = owner.onDisconnected;

        public void Dispose()
        {
            signal.disconnect_all_slots();
            owner.Dispose();
        }

        /// <summary>A callback that native code deletes with its last hold on it.</summary>
        private sealed class GivenAwayRecorder : Recorder
        {
            public override bool unpin()
            {
                base.unpin();
                return true;
            }
        }

        public void AnObjectGivenAwayIsDeletedByTheLastUnpin()
        {
            var recorder = new GivenAwayRecorder();
            new ErrorCodeCallback(recorder).Dispose();
            // What is already deleted is not deleted again.
            recorder.Dispose();
            Assert.Equal(1, recorder.Unpins, "unpins");
        }

        public void AConnectionOutlivesItsSignal()
        {
            connection slot;
            using (var gone = new HIDDeviceClient())
                slot = new Recorder().ConnectTo(gone.onDisconnected);
            Assert.True(!slot.connected() && slot.blocked(), "connected");
            slot.disconnect();
            slot.Dispose();
        }

        public void ManyThreadsMayConnectFireAndDisconnect()
        {
            int calls = 0;
            new Recorder(code => Interlocked.Increment(ref calls)).ConnectTo(signal);
            var threads = Enumerable.Range(0, 4).Select(i => new Thread(() =>
            {
                for (int round = 0; round < 200; ++round)
                {
                    connection other = new Recorder().ConnectTo(signal);
                    Fire();
                    other.disconnect();
                }
            })).ToList();
            threads.ForEach(thread => thread.Start());
            threads.ForEach(thread => thread.Join());
            Assert.Equal(800, calls, "calls");
            Assert.Equal(1u, signal.num_slots(), "slots");
        }

        public void TheSignalsOfTheInterfaceAndOfTheClassAreTwo()
        {
            var inherited = new Recorder();
            connection slot = inherited.ConnectTo(((IHIDDeviceClient)owner).onDisconnected);
            Fire();
            Assert.Equal(0, inherited.Codes.Length, "calls");
            slot.disconnect();
        }

        private void Fire()
        {
            using (var code = new error_code(5, Common.GlobalCategory))
                signal.call(code);
        }
    }
}
