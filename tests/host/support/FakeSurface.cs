using System;
using System.Collections.Generic;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>A surface of 100 by 200 pixels at (10, 20) of the screen, which notes what is asked of
    /// it.</summary>
    public class FakeSurface : IInputContext
    {
        public List<string> Asked { get; } = new List<string>();

        /// <summary>Thrown in place of a mouse speed.</summary>
        public Exception Failure { get; set; }

        public override ushort convertVKCodeToUnicode(uint vk) => (ushort)(vk + 0x4E00);
        public override uint mapVK(uint index) => index + 100;
        public override uint mapScan(uint index) => index + 200;
        public override void lockSystemMouse() => Asked.Add("lock");
        public override void unlockSystemMouse(int x, int y) => Asked.Add("unlock " + x + "," + y);
        public override int getSystemMouseSpeed() => Failure == null ? 7 : throw Failure;
        public override void setCaptureMouseExclusively() { }
        public override void releaseCaptureMouseExclusively() { }

        /// <summary>Presses and releases the key of an a.</summary>
        public void TypeA()
        {
            onKeyDown.call(0x41, 30, 1);
            onKeyUp.call(0x41, 30);
        }

        public override bool screenToInputSurface(Point point)
        {
            point.x -= 10;
            point.y -= 20;
            return true;
        }

        public override bool inputSurfaceToScreen(Point point) => false;

        public override bool getInputSurfaceRectWithinScreen(Rect rect)
        {
            rect.left = 10;
            rect.top = 20;
            rect.right = 110;
            rect.bottom = 220;
            return true;
        }
    }
}
