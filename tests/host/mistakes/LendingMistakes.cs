using System;
using System.Runtime.CompilerServices;
using Orbelantine.Swig;
using Orbelantine.Swig.avstack_base;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>Objects that native code may call, let go of too early.</summary>
    public static class LendingMistakes
    {
        private sealed class Counting : IMediaElement
        {
            public static int Frames { get; private set; }

            public override void onFrame(IMediaBuffer buffer) => ++Frames;
        }

        private sealed class ReturningBuffer : IMediaBuffer
        {
            public override IMediaBuffer copy(byte type, ulong timestamp) => new ReturningBuffer();

            public override byte getType() => 42;
        }

        public static void ASurfaceInUseIsNotDisposed()
        {
            var surface = new FakeSurface();
            using (var client = new HidInputClient(new KVStore()))
            {
                client.setInputContext(surface);
                var thrown = Assert.Throws<InvalidOperationException>(() => surface.Dispose());
                Assert.True(thrown.Message.Contains("FakeSurface") && thrown.Message.EndsWith("."), thrown.Message);
                surface.onInputSurfaceLostFocus.call();
            }
            surface.Dispose();
        }

        public static void AnElementInUseIsNeitherDisposedNorCollected()
        {
            using (var packer = new HIDEventsPacker(new KVStore()))
            using (var move = new IInputMediaBufferMouse(5, -3, 0))
            {
                WeakReference element = Register(packer);
                Collector.Run();
                packer.onFrame(move);
                Assert.Equal(1, Counting.Frames);
                Assert.Throws<InvalidOperationException>(() => ((IDisposable)element.Target).Dispose());
                packer.registerTarget(null);
                Collector.Run();
                Assert.True(!element.IsAlive, "the element is held for ever");
            }
        }

        public static void AnElementMayBeGivenToMany()
        {
            var element = new Counting();
            using (var first = new HIDEventsPacker(new KVStore()))
            using (var second = new HIDEventsPacker(new KVStore()))
            {
                first.registerTarget(element);
                first.registerTarget(element);
                second.registerTarget(element);
                first.Dispose();
                Assert.Throws<InvalidOperationException>(() => element.Dispose());
            }
            element.Dispose();
        }

        public static void ABufferThatAnOverrideReturnsLivesOn()
        {
            using (var buffer = new ReturningBuffer())
            using (IMediaBuffer copy = buffer.copy())
            {
                Collector.Run();
                Assert.Equal((byte)42, copy.getType());
            }
        }

        public static void ACallbackInUseIsNeitherDisposedNorCollected()
        {
            var recorder = new Recorder();
            var function = new ErrorCodeCallback(recorder);
            Assert.Throws<InvalidOperationException>(() => recorder.Dispose());
            function.Dispose();
            recorder.Dispose();

            using (var device = new HIDDeviceClient())
            {
                int calls = 0;
                device.onDisconnected.connect(code => ++calls).Dispose();
                Collector.Run();
                using (var code = new error_code())
                    device.onDisconnected.call(code);
                Assert.Equal(1, calls);
            }
        }

        public static void ACompositePutIntoItselfIsRefused()
        {
            using (var outer = new InputContextComposite())
            using (var inner = new InputContextComposite())
            {
                Assert.Throws<ArgumentException>(() => outer.setMainInputContext(outer));
                Assert.Throws<ArgumentException>(() => outer.addSecondaryContext("self", outer));
                outer.setMainInputContext(inner);
                Assert.Throws<ArgumentException>(() => inner.addSecondaryContext("outer", outer));
                outer.setMainInputContext(null);
                inner.setMainInputContext(outer);
            }
        }

        public static void ACompositeWithoutMainContextHasNobodyToAsk()
        {
            using (var composite = new InputContextComposite())
            {
                var thrown = Assert.Throws<InvalidOperationException>(() => composite.getSystemMouseSpeed());
                Assert.True(thrown.Message.Contains("setMainInputContext"), thrown.Message);
                IntPtr handle = Raw.Handle<IInputContext>(composite);
                Assert.Equal(10, Raw.Call("input", "IInputContext_getSystemMouseSpeed", handle));
                Assert.Equal((ushort)0, Raw.Call("input", "IInputContext_convertVKCodeToUnicode", handle, 65u));
                Raw.Call("input", "IInputContext_lockSystemMouse", handle);
            }
        }

        [MethodImpl(MethodImplOptions.NoInlining)]
        private static WeakReference Register(HIDEventsPacker packer)
        {
            var element = new Counting();
            packer.registerTarget(element);
            return new WeakReference(element);
        }
    }
}
