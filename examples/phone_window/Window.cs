using System;

namespace Orbelantine.PhoneWindow
{
    /// <summary>A window with the phone's picture in it, as large as fits. One thread's.</summary>
    internal sealed class Window : IDisposable
    {
        private const uint Grey = 0x404040;
        private const uint White = 0xFFFFFF;
        private const uint Blue = 0x3060C0;
        private const uint Red = 0xC03030;
        private const uint Black = 0;
        private const int DotRadius = 3;
        private const int CursorArm = 6;
        private const int LetterWidth = 6;
        private const int LineHeight = 14;

        private readonly PhoneScreen phone;
        private readonly IntPtr display;
        private readonly IntPtr window;
        private readonly IntPtr brush;
        private readonly IntPtr deleteWindow;
        private uint width;
        private uint height;

        /// <summary>Throws an InvalidOperationException without a display.</summary>
        public Window(PhoneScreen phone, uint width, uint height)
        {
            this.phone = phone;
            display = Xlib.XOpenDisplay(null);
            if (display == IntPtr.Zero)
                throw new InvalidOperationException("there is no X display: set DISPLAY, or let './dev demo window' start one");
            window = MakeWindow(Xlib.XDefaultRootWindow(display), width, height, Grey);
            Canvas = MakeWindow(window, width, height, White);
            brush = Xlib.XCreateGC(display, Canvas, UIntPtr.Zero, IntPtr.Zero);
            Xlib.XStoreName(display, window, "Phone");
            deleteWindow = Xlib.XInternAtom(display, "WM_DELETE_WINDOW", false);
            Xlib.XSetWMProtocols(display, window, new[] { deleteWindow }, 1);
            Xlib.XSelectInput(display, window, new IntPtr(Xlib.StructureNotifyMask));
            Xlib.XSelectInput(display, Canvas, new IntPtr(Xlib.ExposureMask));
            Fit(width, height);
            Xlib.XMapWindow(display, Canvas);
            Xlib.XMapWindow(display, window);
            Xlib.XSync(display, false);
        }

        /// <summary>The window of the picture alone.</summary>
        public IntPtr Canvas { get; }

        /// <summary>Takes what has happened to the window, and draws. False once its user has closed it.</summary>
        public bool Update()
        {
            bool draws = phone.Update();
            while (Xlib.XPending(display) > 0)
            {
                Xlib.XNextEvent(display, out Xlib.Event next);
                if (next.Type == Xlib.ClientMessage && next.FirstWord == deleteWindow)
                    return false;
                if (next.Type == Xlib.ConfigureNotify && next.Window == window)
                    Fit((uint)next.Width, (uint)next.Height);
                draws |= next.Type == Xlib.Expose;
            }
            if (draws)
                Draw();
            return true;
        }

        public void Dispose()
        {
            Xlib.XCloseDisplay(display);
        }

        private IntPtr MakeWindow(IntPtr parent, uint wide, uint high, uint colour)
        {
            return Xlib.XCreateSimpleWindow(display, parent, 0, 0, wide, high, 0, UIntPtr.Zero, new UIntPtr(colour));
        }

        // The picture keeps its shape, in the middle of the window.
        private void Fit(uint wide, uint high)
        {
            width = Math.Max(1, Math.Min(wide, (uint)(high * (long)phone.Width / phone.Height)));
            height = Math.Max(1, Math.Min(high, (uint)(wide * (long)phone.Height / phone.Width)));
            Xlib.XMoveResizeWindow(display, Canvas, (int)(wide - width) / 2, (int)(high - height) / 2, width, height);
        }

        private void Draw()
        {
            Xlib.XClearWindow(display, Canvas);
            SetColour(Blue);
            foreach ((int X, int Y) press in phone.Presses)
                DrawDot(Scaled(press));
            SetColour(Red);
            (int x, int y) = Scaled(phone.Cursor);
            Xlib.XDrawLine(display, Canvas, brush, x - CursorArm, y, x + CursorArm, y);
            Xlib.XDrawLine(display, Canvas, brush, x, y - CursorArm, x, y + CursorArm);
            SetColour(Black);
            DrawText(phone.Text);
            Xlib.XSync(display, false);
        }

        private void DrawText(string text)
        {
            int perLine = Math.Max(1, (int)width / LetterWidth - 1);
            for (int at = 0, line = 1; at < text.Length; at += perLine, ++line)
            {
                string part = text.Substring(at, Math.Min(perLine, text.Length - at));
                Xlib.XDrawString(display, Canvas, brush, LetterWidth / 2, line * LineHeight, part, part.Length);
            }
        }

        private void DrawDot((int X, int Y) at)
        {
            Xlib.XFillArc(display, Canvas, brush, at.X - DotRadius, at.Y - DotRadius, 2 * DotRadius, 2 * DotRadius, 0, 360 * 64);
        }

        private (int, int) Scaled((int X, int Y) place)
        {
            return ((int)(place.X * (long)width / phone.Width), (int)(place.Y * (long)height / phone.Height));
        }

        private void SetColour(uint colour)
        {
            Xlib.XSetForeground(display, brush, new UIntPtr(colour));
        }
    }
}
