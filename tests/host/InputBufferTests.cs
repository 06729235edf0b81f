using System;
using System.Linq;
using System.Runtime.InteropServices;
using Orbelantine.Swig.avstack_base;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>The input buffers with their events, and the input format.</summary>
    public sealed class InputBufferTests
    {
        public void ACopyOfAnInputBufferIsItsOwn()
        {
            using (var mouse = new IInputMediaBufferMouse(5, -6, 2, false, 77))
            using (IMediaBuffer copy = mouse.copy())
            using (IMediaBuffer soft = mouse.soft_copy())
            {
                Marshal.WriteInt32(mouse.map(0), 9);
                foreach (IMediaBuffer made in new[] { copy, soft })
                {
                    Assert.Equal((byte)10, made.getType());
                    Assert.Equal(77ul, made.getTimestamp());
                    var bytes = new byte[made.getSize()];
                    Marshal.Copy(made.getRawBuffer(), bytes, 0, bytes.Length);
                    Assert.Sequence(new byte[] { 5, 0, 0, 0, 0xFA, 0xFF, 0xFF, 0xFF, 2 }, bytes.Take(9));
                }
            }
        }

        public void EventFieldsAreReadAndWritten()
        {
            using (var mouse = new IInputMediaBufferMouse.EventData { x = -1, y = 2, type = 3, maxX = 4, maxY = 5 })
                Assert.Sequence(new[] { -1, 2, 3, 4, 5 }, new[] { mouse.x, mouse.y, mouse.type, mouse.maxX, mouse.maxY });
            using (var key = new IInputMediaBufferKeyboard.EventData { ch = 1, type = 2, extra = uint.MaxValue })
                Assert.Sequence(new[] { 1u, 2u, uint.MaxValue }, new[] { key.ch, key.type, key.extra });
            using (var touch = new IInputMediaBufferTouch.EventData { id = 1, x = -2, y = 3, type = 4 })
                Assert.Sequence(new[] { 1, -2, 3, 4 }, new[] { touch.id, touch.x, touch.y, touch.type });
        }

        public void AnInputFormatGoesThroughAStore()
        {
            using (KVStore store = new InputFormat(3, 4, 5, 6).getAsKVStore())
            using (var format = new InputFormat(store) { mouseType = 7 })
                Assert.Sequence(new uint[] { 7, 4, 5, 6 }, new[] { format.mouseType, format.keyboardType, format.touchType, format.typeFlags });
        }
    }
}
