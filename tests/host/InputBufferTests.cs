using System;
using System.Linq;
using System.Runtime.InteropServices;
using Orbelantine.Swig.avstack_base;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>The three input buffers with their layouts, and the input format.</summary>
    public sealed class InputBufferTests
    {
        private const ulong AllOnes = ulong.MaxValue;

        [Test]
        public void TheLayoutOfAMouseEvent()
        {
            using (var buffer = new IInputMediaBufferMouse(-2, 3, 8, false, 77, 100, 200))
            {
                Assert.Equal((byte)10, buffer.getType());
                Assert.Equal(20u, buffer.getSize());
                Assert.Sequence(new byte[] { 0xFE, 0xFF, 0xFF, 0xFF, 3, 0, 0, 0, 8 }, Payload(buffer).Take(9));
                Assert.Sequence(new byte[] { 100, 0, 0, 0, 200, 0, 0, 0 }, Payload(buffer).Skip(12));
                Assert.Equal(buffer.map(0), buffer.getRawBuffer());
                Assert.Equal(buffer.map(0), buffer.map());
            }
        }

        [Test]
        public void TheLayoutOfAKeyEvent()
        {
            using (var buffer = new IInputMediaBufferKeyboard(0x1E, 1, 0x01020304, false))
            {
                Assert.Equal((byte)9, buffer.getType());
                Assert.Equal(8u, buffer.getSize());
                Assert.Sequence(new byte[] { 0x1E, 1 }, Payload(buffer).Take(2));
                Assert.Sequence(new byte[] { 4, 3, 2, 1 }, Payload(buffer).Skip(4));
                Assert.Equal(0ul, buffer.getTimestamp());
            }
        }

        [Test]
        public void TheLayoutOfATouchEvent()
        {
            using (var buffer = new IInputMediaBufferTouch(4, 0x0102, 0x0304, 2, false, 77))
            {
                Assert.Equal((byte)28, buffer.getType());
                Assert.Equal(16u, buffer.getSize());
                Assert.Equal((byte)4, Payload(buffer)[0]);
                Assert.Sequence(new byte[] { 2, 1, 0, 0, 4, 3, 0, 0, 2 }, Payload(buffer).Skip(4).Take(9));
                Assert.Equal(77ul, buffer.getTimestamp());
            }
        }

        [Test]
        public void ACopyOfAnInputBufferIsItsOwn()
        {
            using (var mouse = new IInputMediaBufferMouse(5, 6, 2, false, 77))
            using (IMediaBuffer copy = mouse.copy())
            using (IMediaBuffer soft = mouse.soft_copy())
            {
                Marshal.WriteInt32(mouse.map(0), 9);
                foreach (IMediaBuffer made in new[] { copy, soft })
                {
                    Assert.Equal((byte)10, made.getType());
                    Assert.Equal(77ul, made.getTimestamp());
                    Assert.Sequence(new byte[] { 5, 0, 0, 0, 6, 0, 0, 0, 2 }, Payload(made).Take(9));
                }
            }
        }

        [Test]
        public void ABufferIsAlsoItsBase()
        {
            IntPtr handle = Raw.CallHandle("input", "new_IInputMediaBufferMouse__SWIG_4", 1, 2, (byte)3);
            IntPtr upcast = Raw.CallHandle("input", "IInputMediaBufferMouse_SWIGSmartPtrUpcast", handle);
            Raw.Call("input", "delete_IInputMediaBufferMouse", handle);
            Assert.Equal((byte)10, Raw.Call("avstack_base", "IMediaBuffer_getType", upcast));
            Raw.Call("avstack_base", "delete_IMediaBuffer", upcast);
        }

        [Test]
        public void EventFieldsAreReadAndWritten()
        {
            using (var mouse = new IInputMediaBufferMouse.EventData { x = -1, y = 2, type = 3, maxX = 4, maxY = 5 })
                Assert.Sequence(new[] { -1, 2, 3, 4, 5 }, new[] { mouse.x, mouse.y, mouse.type, mouse.maxX, mouse.maxY });
            using (var key = new IInputMediaBufferKeyboard.EventData { ch = 1, type = 2, extra = uint.MaxValue })
                Assert.Sequence(new[] { 1u, 2u, uint.MaxValue }, new[] { key.ch, key.type, key.extra });
            using (var touch = new IInputMediaBufferTouch.EventData { id = 1, x = -2, y = 3, type = 4 })
                Assert.Sequence(new[] { 1, -2, 3, 4 }, new[] { touch.id, touch.x, touch.y, touch.type });
        }

        [Test]
        public void TheConstructorsOfAnInputFormat()
        {
            Assert.Sequence(new uint[] { 0, 0, 0, 0 }, Fields(new InputFormat()));
            Assert.Sequence(new uint[] { 3, 2, 0, 0 }, Fields(new InputFormat(3)));
            Assert.Sequence(new uint[] { 3, 4, 0, 0 }, Fields(new InputFormat(3, 4)));
            Assert.Sequence(new uint[] { 3, 4, 5, 0 }, Fields(new InputFormat(3, 4, 5)));
            Assert.Sequence(new uint[] { 3, 4, 5, 6 }, Fields(new InputFormat(3, 4, 5, 6)));
        }

        [Test]
        public void AnInputFormatGoesThroughAStore()
        {
            var format = new InputFormat { mouseType = 3, keyboardType = 4, touchType = 5, typeFlags = 6 };
            using (KVStore store = format.getAsKVStore())
            {
                Assert.Sequence(new[] { 3, 4, 5, 6 },
                                new[] { "mouseType", "keyboardType", "touchType", "typeFlags" }.Select(key => store.getIntAt(key, -1)));
                Assert.Sequence(new uint[] { 3, 4, 5, 6 }, Fields(new InputFormat(store)));
            }
            using (var empty = new KVStore())
                Assert.Sequence(new uint[] { 0, 0, 0, 0 }, Fields(new InputFormat(empty)));
        }

        private static byte[] Payload(IMediaBuffer buffer)
        {
            var bytes = new byte[buffer.getSize()];
            Marshal.Copy(buffer.map(0), bytes, 0, bytes.Length);
            return bytes;
        }

        private static uint[] Fields(InputFormat format)
        {
            return new[] { format.mouseType, format.keyboardType, format.touchType, format.typeFlags };
        }
    }
}
