using System;
using System.Collections.Generic;
using System.Linq;
using System.Runtime.InteropServices;
using System.Threading;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>A callback as a host writes one: held from pin to unpin, and the host's to delete. Any
    /// thread may call it.</summary>
    public class Recorder : ErrorCodeCallbackImpl
    {
        private readonly Action<error_code> action;
        private GCHandle held;

        public Recorder(Action<error_code> action = null)
        {
            this.action = action;
        }

        public int Pins { get; private set; }
        public int Unpins { get; private set; }
        public List<error_code> Codes { get; } = new List<error_code>();

        public IEnumerable<int> Values
        {
            get { return Codes.Select(code => code.value()); }
        }

        public override void pin()
        {
            held = GCHandle.Alloc(this);
            ++Pins;
        }

        public override bool unpin()
        {
            held.Free();
            ++Unpins;
            return false;
        }

        public override void call(error_code code)
        {
            lock (Codes)
                Codes.Add(code);
            action?.Invoke(code);
        }
    }

    /// <summary>A callback that native code deletes with its last hold on it.</summary>
    public sealed class GivenAwayRecorder : Recorder
    {
        public override void pin()
        {
            swigCMemOwn = false;
            base.pin();
        }

        public override bool unpin()
        {
            base.unpin();
            return true;
        }
    }

    public sealed class CallbackTests : IDisposable
    {
        private readonly HIDDeviceClient owner = new HIDDeviceClient();
        private readonly SignalErrorCodeCallback signal;

        public CallbackTests()
        {
            signal = owner.onDisconnected;
        }

        public void Dispose()
        {
            signal.disconnect_all_slots();
            owner.Dispose();
        }

        [Test]
        public void EachFunctionOfAnObjectPinsOnItsOwn()
        {
            var recorder = new Recorder();
            for (int i = 0; i < 2; ++i)
                new ErrorCodeCallback(recorder).Dispose();
            Assert.Equal(2, recorder.Pins, "pins");
            Assert.Equal(2, recorder.Unpins, "unpins");
        }

        [Test]
        public void AnObjectGivenAwayIsDeletedByTheLastUnpin()
        {
            var recorder = new GivenAwayRecorder();
            var function = new ErrorCodeCallback(recorder);
            function.call(HidErrors.getErrorCode(21122));
            function.Dispose();
            // What is already deleted is not deleted again.
            recorder.Dispose();
            Assert.Sequence(new[] { 21122 }, recorder.Values);
            Assert.Equal(1, recorder.Unpins, "unpins");
        }

        [Test]
        public void ACallHandsOverACodeOfItsOwn()
        {
            var recorder = new Recorder();
            using (var function = new ErrorCodeCallback(recorder))
            using (error_code sent = HidErrors.getErrorCode(21122))
                function.call(sent);
            Assert.Equal(21122, recorder.Codes.Single().value());
            Assert.Equal("'Category: struct orbelantine::HidErrors, Message: Error code - TimeoutReached'",
                         recorder.Codes.Single().message());
            recorder.Codes.Single().Dispose();
        }

        [Test]
        public void AnEmptyConnectionIsNotConnected()
        {
            using (var none = new connection())
            {
                Assert.True(!none.connected() && none.blocked(), "connected");
                none.disconnect();
            }
        }

        [Test]
        public void AConnectionOutlivesItsSignal()
        {
            connection slot;
            using (var gone = new HIDDeviceClient())
            using (var function = new ErrorCodeCallback(new Recorder()))
                slot = gone.onDisconnected.connect(function);
            Assert.True(!slot.connected() && slot.blocked(), "connected");
            slot.disconnect();
            slot.Dispose();
        }

        [Test]
        public void ADeletedConnectionLeavesItsSlot()
        {
            var recorder = new Recorder();
            Connect(recorder).Dispose();
            Fire(5);
            Assert.Sequence(new[] { 5 }, recorder.Values);
        }

        [Test]
        public void ASlotMayFireTheSignalAgain()
        {
            Recorder recorder = null;
            recorder = new Recorder(code => { if (recorder.Codes.Count < 3) Fire(code.value() + 1); });
            Connect(recorder);
            Fire(1);
            Assert.Sequence(new[] { 1, 2, 3 }, recorder.Values);
        }

        [Test]
        public void ACallbackRunsOnTheThreadThatFires()
        {
            int calledOn = 0;
            Connect(new Recorder(code => calledOn = Thread.CurrentThread.ManagedThreadId));
            var firing = new Thread(() => Fire(0));
            firing.Start();
            firing.Join();
            Assert.Equal(firing.ManagedThreadId, calledOn);
        }

        [Test]
        public void ManyThreadsMayConnectFireAndDisconnect()
        {
            int calls = 0;
            Connect(new Recorder(code => Interlocked.Increment(ref calls)));
            var threads = Enumerable.Range(0, 4).Select(i => new Thread(() =>
            {
                for (int round = 0; round < 200; ++round)
                {
                    connection other = Connect(new Recorder());
                    Fire(round);
                    other.disconnect();
                }
            })).ToList();
            threads.ForEach(thread => thread.Start());
            threads.ForEach(thread => thread.Join());
            Assert.Equal(800, calls, "calls");
            Assert.Equal(1u, signal.num_slots(), "slots");
        }

        [Test]
        public void TheSignalsOfTheInterfaceAndOfTheClassAreTwo()
        {
            var inherited = new Recorder();
            using (var function = new ErrorCodeCallback(inherited))
                ((IHIDDeviceClient)owner).onDisconnected.connect(function).Dispose();
            Assert.True(signal.empty(), "the slot is in the class's own signal");
            Fire(1);
            Assert.Equal(0, inherited.Codes.Count, "calls");
            ((IHIDDeviceClient)owner).onDisconnected.disconnect_all_slots();
        }

        [Test]
        public void NoFunctionMakesASlotToo()
        {
            connection slot = signal.connect(null);
            Assert.Equal(1u, signal.num_slots());
            slot.disconnect();
        }

        private connection Connect(Recorder recorder)
        {
            using (var function = new ErrorCodeCallback(recorder))
                return signal.connect(function);
        }

        private void Fire(int value)
        {
            using (var code = new error_code(value, Common.GlobalCategory))
                signal.call(code);
        }
    }
}
