using System;
using System.Collections.Generic;
using System.Linq;
using System.Runtime.InteropServices;
using Orbelantine.Swig.avstack_base;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>Elements and buffers, native ones and the host's own.</summary>
    public sealed class MediaTests
    {
        private const ulong AllOnes = ulong.MaxValue;

        private sealed class HostBuffer : IMediaBuffer
        {
            public List<string> Calls { get; } = new List<string>();

            public override IMediaBuffer copy(byte type, ulong timestamp)
            {
                Calls.Add("copy " + type + " " + timestamp);
                return new IInputMediaBufferMouse(1, 2, 3, false);
            }

            public override IMediaBuffer soft_copy(byte type, ulong timestamp)
            {
                Calls.Add("soft_copy " + type + " " + timestamp);
                return null;
            }

            public override IntPtr map(uint plane)
            {
                return new IntPtr(0x1000 + plane);
            }

            public override byte getType()
            {
                return (byte)(base.getType() + 200);
            }

            public override uint getSize()
            {
                return base.getSize() - 1;
            }

            public override uint getStride(uint plane)
            {
                return plane + 10;
            }

            public override void setTimestamp(ulong timestamp)
            {
                base.setTimestamp(timestamp);
                Calls.Add("setTimestamp " + timestamp);
            }
        }

        private sealed class HostElement : IMediaElement
        {
            public List<string> Calls { get; } = new List<string>();
            public string Name { get; set; } = "";

            public override void start()
            {
                base.start();
                Calls.Add("start");
            }

            public override void stop() { Calls.Add("stop"); }
            public override void pause() { Calls.Add("pause"); }
            public override void resume() { Calls.Add("resume"); }
            public override void refresh() { Calls.Add("refresh"); }
            public override void flush() { Calls.Add("flush"); }
            public override string getName() { return Name; }

            public override void registerTarget(IMediaElement target)
            {
                Calls.Add(target == null ? "no target" : "target " + target.getName());
            }

            public override void onFrame(IMediaBuffer buffer)
            {
                base.onFrame(buffer);
                Calls.Add(buffer == null ? "no buffer" : "buffer " + buffer.getType());
            }
        }

        private sealed class ForwardingSource : IInputSource
        {
            private IMediaElement next;

            public override void registerTarget(IMediaElement target) { next = target; }
            public override void onFrame(IMediaBuffer buffer) { next.onFrame(buffer); }
        }

        [Test]
        public void TheBaseBufferAnswersNothing()
        {
            using (var buffer = new IMediaBuffer())
            {
                Assert.Null(buffer.copy());
                Assert.Null(buffer.copy(1));
                Assert.Null(buffer.copy(1, 2));
                Assert.Null(buffer.soft_copy());
                Assert.Null(buffer.soft_copy(1));
                Assert.Null(buffer.soft_copy(1, 2));
                Assert.Sequence(new IntPtr[3], new[] { buffer.map(), buffer.map(0), buffer.getRawBuffer() });
                Assert.Equal((byte)0, buffer.getType());
                Assert.Sequence(Enumerable.Repeat(uint.MaxValue, 5),
                                new[] { buffer.getWidth(), buffer.getHeight(), buffer.getStride(), buffer.getStride(1), buffer.getSize() });
                buffer.setTimestamp(5);
                buffer.unmap();
                Assert.Equal(AllOnes, buffer.getTimestamp());
            }
        }

        [Test]
        public void NativeCodeCallsTheHostsBuffer()
        {
            using (var buffer = new HostBuffer())
            {
                IntPtr handle = Raw.Handle<IMediaBuffer>(buffer);
                Assert.Equal((byte)200, Raw.Call("avstack_base", "IMediaBuffer_getType", handle));
                Assert.Equal(uint.MaxValue - 1, Raw.Call("avstack_base", "IMediaBuffer_getSize", handle));
                Assert.Equal(new IntPtr(0x1007), Raw.CallHandle("avstack_base", "IMediaBuffer_map__SWIG_1", handle, 7u));
                Assert.Equal(IntPtr.Zero, Raw.CallHandle("avstack_base", "IMediaBuffer_map__SWIG_0", handle));
                Raw.Call("avstack_base", "IMediaBuffer_setTimestamp", handle, 9ul);
                Assert.Sequence(new[] { "setTimestamp 9" }, buffer.Calls);
            }
        }

        [Test]
        public void ExplicitCallsReachTheBaseBehindTheOverride()
        {
            using (var buffer = new HostBuffer())
            {
                IntPtr handle = Raw.Handle<IMediaBuffer>(buffer);
                Assert.Equal((byte)0, Raw.Call("avstack_base", "IMediaBuffer_getTypeSwigExplicitIMediaBuffer", handle));
                Assert.Equal(uint.MaxValue, Raw.Call("avstack_base", "IMediaBuffer_getSizeSwigExplicitIMediaBuffer", handle));
                Assert.Equal(IntPtr.Zero, Raw.CallHandle("avstack_base", "IMediaBuffer_copySwigExplicitIMediaBuffer__SWIG_2", handle));
            }
        }

        [Test]
        public void OmittedArgumentsReachTheOverrideAsKeepValues()
        {
            using (var buffer = new HostBuffer())
            {
                buffer.copy();
                buffer.copy(7);
                buffer.soft_copy();
                buffer.soft_copy(7);
                Assert.Sequence(new[] { "copy 255 " + AllOnes, "copy 7 " + AllOnes, "soft_copy 255 " + AllOnes, "soft_copy 7 " + AllOnes },
                                buffer.Calls);
                Assert.Equal(10u, buffer.getStride());
            }
        }

        [Test]
        public void WhatAnOverrideReturnsLivesOnInNativeCode()
        {
            using (var buffer = new HostBuffer())
            using (IMediaBuffer returned = buffer.copy())
            {
                GC.Collect();
                GC.WaitForPendingFinalizers();
                Assert.Equal((byte)10, returned.getType());
                Assert.Equal(2, Marshal.ReadInt32(returned.map(0), 4));
                Assert.Null(buffer.soft_copy());
            }
        }

        [Test]
        public void TheBaseElementDoesNothing()
        {
            using (var element = new IMediaElement())
            {
                element.start();
                element.stop();
                element.pause();
                element.resume();
                element.registerTarget(element);
                element.onFrame(null);
                element.refresh();
                element.flush();
                Assert.Equal("", element.getName());
            }
        }

        [Test]
        public void NativeCodeCallsTheHostsElement()
        {
            using (var element = new HostElement())
            using (var target = new HostElement { Name = "next" })
            using (var buffer = new HostBuffer())
            {
                IntPtr handle = Raw.Handle<IMediaElement>(element);
                foreach (string call in new[] { "start__SWIG_0", "stop", "pause", "resume", "refresh", "flush" })
                    Raw.Call("avstack_base", "IMediaElement_" + call, handle);
                Raw.Call("avstack_base", "IMediaElement_registerTarget", handle, Raw.Handle<IMediaElement>(target));
                Raw.Call("avstack_base", "IMediaElement_registerTarget", handle, IntPtr.Zero);
                Raw.Call("avstack_base", "IMediaElement_onFrame", handle, Raw.Handle<IMediaBuffer>(buffer));
                Raw.Call("avstack_base", "IMediaElement_onFrame", handle, IntPtr.Zero);
                Assert.Sequence(new[] { "start", "stop", "pause", "resume", "refresh", "flush", "target next", "no target", "buffer 200", "no buffer" },
                                element.Calls);
            }
        }

        [Test]
        public void AnOverridesTextReachesNativeCode()
        {
            using (var element = new HostElement())
            {
                IntPtr handle = Raw.Handle<IMediaElement>(element);
                foreach (string name in new[] { "grün \U0001F4F1", "", new string('x', 5000), null })
                {
                    element.Name = name;
                    Assert.Equal(name ?? "", Raw.CallText("avstack_base", "IMediaElement_getName", handle));
                }
            }
        }

        [Test]
        public void StartingWithACallbackStartsThenCallsItWithSuccess()
        {
            using (var element = new HostElement())
            {
                var recorder = new Recorder(code => element.Calls.Add("callback " + code.value()));
                using (var callback = new ErrorCodeCallback(recorder))
                    element.start(callback);
                Assert.Sequence(new[] { "start", "callback 0" }, element.Calls);
                Assert.Equal(recorder.Pins, recorder.Unpins, "pins and unpins");
            }
        }

        [Test]
        public void ASourceOfTheHostFeedsATargetOfTheHost()
        {
            using (var source = new ForwardingSource())
            using (var target = new HostElement())
            using (var buffer = new HostBuffer())
            {
                IntPtr handle = Raw.Handle<IMediaElement>(source);
                Raw.Call("avstack_base", "IMediaElement_registerTarget", handle, Raw.Handle<IMediaElement>(target));
                Raw.Call("avstack_base", "IMediaElement_onFrame", handle, Raw.Handle<IMediaBuffer>(buffer));
                Assert.Sequence(new[] { "buffer 200" }, target.Calls);
            }
        }

        [Test]
        public void ATargetIsAnElement()
        {
            using (var target = new IInputTarget())
                Assert.Equal("", Raw.CallText("avstack_base", "IMediaElement_getName", Raw.Handle<IMediaElement>(target)));
        }

        [Test]
        public void TheTimeBaseRunsOn()
        {
            ulong before = IMediaBuffer.getNowTimestamp();
            ulong made;
            using (var buffer = new IInputMediaBufferMouse(0, 0, 0, false))
                made = buffer.getTimestamp();
            ulong after = IMediaBuffer.getNowTimestamp();
            Assert.True(before <= made && made <= after && after - before < 60000, before + " " + made + " " + after);
        }
    }
}
