using System;
using Orbelantine.Swig.input;

namespace Orbelantine.DemoHost
{
    /// <summary>A window that only the session knows: it raises what a user would do over it. One thread
    /// raises; native code asks from its own.</summary>
    public sealed class Surface : IInputContext
    {
        // Where the window stands on the screen.
        private const int Left = 100;
        private const int Top = 50;
        // After 40 ms without a move the phone forgets how fast its cursor was, and hits what comes next.
        private const int ApartMs = 45;
        private const int StepLength = 32;
        private static readonly uint[] VirtualKeys = { 32, 32, 91 };
        private static readonly uint[] ScanCodes = { 57, 29, 219 };

        private volatile int width = 540;
        private volatile int height = 1170;

        public int Width { get { return width; } }
        public int Height { get { return height; } }

        public void Resize(int newWidth, int newHeight)
        {
            width = newWidth;
            height = newHeight;
        }

        public void Press(Key key)
        {
            if (key.Shift)
                onKeyDown.call(Keyboard.ShiftKey, Keyboard.LeftShift, 1);
            onKeyDown.call(key.VirtualKey, key.ScanCode, 1);
            onKeyUp.call(key.VirtualKey, key.ScanCode);
            if (key.Shift)
                onKeyUp.call(Keyboard.ShiftKey, Keyboard.LeftShift);
        }

        public void Click(int x, int y)
        {
            onMouseClickDown.call(eMouseButton.MouseButtonLeft, x, y);
            onMouseClickUp.call(eMouseButton.MouseButtonLeft, x, y);
        }

        public void Touch(int x, int y)
        {
            onPointerDown.call(ePointerType.PointerTouch, 1, Left + x, Top + y, true);
            onPointerUp.call(ePointerType.PointerTouch, 1, Left + x, Top + y, true);
        }

        /// <summary>Presses, moves in steps, and releases.</summary>
        public void Drag(int fromX, int fromY, int toX, int toY, StopSignal stop)
        {
            onPointerDown.call(ePointerType.PointerTouch, 1, Left + fromX, Top + fromY, true);
            int steps = Math.Max(1, Math.Max(Math.Abs(toX - fromX), Math.Abs(toY - fromY)) / StepLength);
            for (int step = 1; step <= steps && !stop.IsSet; ++step)
            {
                stop.Pause(ApartMs);
                onPointerUpdate.call(ePointerType.PointerTouch, 1, Left + fromX + (toX - fromX) * step / steps,
                                     Top + fromY + (toY - fromY) * step / steps, true);
            }
            onPointerUp.call(ePointerType.PointerTouch, 1, Left + toX, Top + toY, true);
        }

        public void Turn(int amount, int x, int y)
        {
            onRelativeMouseWheel.call(amount, Left + x, Top + y);
        }

        public void LoseFocus()
        {
            onInputSurfaceLostFocus.call();
        }

        public override ushort convertVKCodeToUnicode(uint vk)
        {
            return 0;
        }

        public override uint mapVK(uint index)
        {
            return index < VirtualKeys.Length ? VirtualKeys[index] : 0;
        }

        public override uint mapScan(uint index)
        {
            return index < ScanCodes.Length ? ScanCodes[index] : 0;
        }

        public override int getSystemMouseSpeed()
        {
            return DEFAULT_MOUSE_SPEED;
        }

        public override bool screenToInputSurface(Point point)
        {
            point.x -= Left;
            point.y -= Top;
            return true;
        }

        public override bool inputSurfaceToScreen(Point point)
        {
            point.x += Left;
            point.y += Top;
            return true;
        }

        public override bool getInputSurfaceRectWithinScreen(Rect rect)
        {
            rect.left = Left;
            rect.top = Top;
            rect.right = Left + width;
            rect.bottom = Top + height;
            return true;
        }

        // The session has no cursor of its own to hold on to.
        public override void lockSystemMouse() { }
        public override void unlockSystemMouse(int x, int y) { }
        public override void setCaptureMouseExclusively() { }
        public override void releaseCaptureMouseExclusively() { }
    }
}
