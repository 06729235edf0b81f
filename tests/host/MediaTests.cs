using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using Orbelantine.Swig.avstack_base;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>Elements and buffers, native ones and the host's own, with their fields.</summary>
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

            public override IntPtr map(uint plane) => new IntPtr(0x1000 + plane);
            public override byte getType() => (byte)(base.getType() + 200);
        }

        private sealed class HostElement : IMediaElement
        {
            private IMediaElement next;

            public List<string> Calls { get; } = new List<string>();
            public string Name { get; set; } = "";

            public override void start() => Calls.Add("start");
            public override string getName() => Name;

            public override void registerTarget(IMediaElement target)
            {
                Calls.Add(target == null ? "no target" : "target " + target.getName());
                next = target;
            }

            public override void onFrame(IMediaBuffer buffer)
            {
                base.onFrame(buffer);
                Calls.Add(buffer == null ? "no buffer" : "buffer " + buffer.getType());
                next?.onFrame(buffer);
            }
        }

        public void NativeCodeCallsTheHostsBufferAndExplicitlyItsBase()
        {
            using (var buffer = new HostBuffer())
            {
                IntPtr handle = Raw.Handle<IMediaBuffer>(buffer);
                Assert.Equal((byte)200, Raw.Call("avstack_base", "IMediaBuffer_getType", handle));
                Assert.Equal((byte)0, Raw.Call("avstack_base", "IMediaBuffer_getTypeSwigExplicitIMediaBuffer", handle));
                Assert.Equal(new IntPtr(0x1007), Raw.CallHandle("avstack_base", "IMediaBuffer_map__SWIG_1", handle, 7u));
                Assert.Equal(IntPtr.Zero, Raw.CallHandle("avstack_base", "IMediaBuffer_map__SWIG_0", handle));
            }
        }

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
            }
        }

        public void WhatAnOverrideReturnsLivesOnInNativeCode()
        {
            using (var buffer = new HostBuffer())
            using (IMediaBuffer returned = buffer.copy())
            {
                Collector.Run();
                Assert.Equal((byte)10, returned.getType());
                Assert.Equal(2, Marshal.ReadInt32(returned.map(0), 4));
                Assert.Null(buffer.soft_copy());
            }
        }

        public void NativeCodeCallsTheHostsElements()
        {
            using (var element = new HostElement())
            using (var target = new HostElement { Name = "next" })
            using (var buffer = new HostBuffer())
            {
                using (ErrorCodeCallback started = ErrorCodeCallback.From(code => element.Calls.Add("callback " + code.value())))
                    element.start(started);
                IntPtr handle = Raw.Handle<IMediaElement>(element);
                Raw.Call("avstack_base", "IMediaElement_registerTarget", handle, Raw.Handle<IMediaElement>(target));
                Raw.Call("avstack_base", "IMediaElement_onFrame", handle, Raw.Handle<IMediaBuffer>(buffer));
                Raw.Call("avstack_base", "IMediaElement_onFrame", handle, IntPtr.Zero);
                Raw.Call("avstack_base", "IMediaElement_registerTarget", handle, IntPtr.Zero);
                Assert.Sequence(new[] { "start", "callback 0", "target next", "buffer 200", "no buffer", "no target" }, element.Calls);
                Assert.Sequence(new[] { "buffer 200", "no buffer" }, target.Calls);
            }
        }

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

        public void FieldsAreReadAndWritten()
        {
            using (var mouse = new IInputMediaBufferMouse.EventData { x = -1, y = 2, type = 3, maxX = 4, maxY = 5 })
                Assert.Sequence(new[] { -1, 2, 3, 4, 5 }, new[] { mouse.x, mouse.y, mouse.type, mouse.maxX, mouse.maxY });
            using (var key = new IInputMediaBufferKeyboard.EventData { ch = 1, type = 2, extra = uint.MaxValue })
                Assert.Sequence(new[] { 1u, 2u, uint.MaxValue }, new[] { key.ch, key.type, key.extra });
            using (var touch = new IInputMediaBufferTouch.EventData { id = 1, x = -2, y = 3, type = 4 })
                Assert.Sequence(new[] { 1, -2, 3, 4 }, new[] { touch.id, touch.x, touch.y, touch.type });
            using (KVStore store = new InputFormat(3, 4, 5, 6).getAsKVStore())
            using (var format = new InputFormat(store) { mouseType = 7 })
                Assert.Sequence(new uint[] { 7, 4, 5, 6 }, new[] { format.mouseType, format.keyboardType, format.touchType, format.typeFlags });
        }
    }
}
