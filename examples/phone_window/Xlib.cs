using System;
using System.Runtime.InteropServices;

namespace Orbelantine.PhoneWindow
{
    /// <summary>What the window needs of X.</summary>
    internal static class Xlib
    {
        public const int Expose = 12;
        public const int ConfigureNotify = 22;
        public const int ClientMessage = 33;
        public const long ExposureMask = 1 << 15;
        public const long StructureNotifyMask = 1 << 17;

        /// <summary>An XEvent of a machine with 64 bits: a union of 192 bytes.</summary>
        [StructLayout(LayoutKind.Explicit, Size = 192)]
        public struct Event
        {
            [FieldOffset(0)] public int Type;
            [FieldOffset(40)] public IntPtr Window;
            [FieldOffset(56)] public int Width;
            [FieldOffset(60)] public int Height;
            [FieldOffset(56)] public IntPtr FirstWord;
        }

        private const string Library = "libX11.so.6";

        [DllImport(Library)] public static extern IntPtr XOpenDisplay(string name);
        [DllImport(Library)] public static extern int XCloseDisplay(IntPtr display);
        [DllImport(Library)] public static extern IntPtr XDefaultRootWindow(IntPtr display);
        [DllImport(Library)] public static extern IntPtr XCreateSimpleWindow(
            IntPtr display, IntPtr parent, int x, int y, uint width, uint height, uint border, UIntPtr borderColour, UIntPtr colour);
        [DllImport(Library)] public static extern int XSelectInput(IntPtr display, IntPtr window, IntPtr mask);
        [DllImport(Library)] public static extern int XStoreName(IntPtr display, IntPtr window, string name);
        [DllImport(Library)] public static extern IntPtr XInternAtom(IntPtr display, string name, bool onlyIfThere);
        [DllImport(Library)] public static extern int XSetWMProtocols(IntPtr display, IntPtr window, IntPtr[] atoms, int count);
        [DllImport(Library)] public static extern int XMapWindow(IntPtr display, IntPtr window);
        [DllImport(Library)] public static extern int XMoveResizeWindow(IntPtr display, IntPtr window, int x, int y, uint width, uint height);
        [DllImport(Library)] public static extern int XPending(IntPtr display);
        [DllImport(Library)] public static extern int XNextEvent(IntPtr display, out Event next);
        [DllImport(Library)] public static extern int XSync(IntPtr display, bool discard);
        [DllImport(Library)] public static extern IntPtr XCreateGC(IntPtr display, IntPtr drawable, UIntPtr mask, IntPtr values);
        [DllImport(Library)] public static extern int XSetForeground(IntPtr display, IntPtr gc, UIntPtr colour);
        [DllImport(Library)] public static extern int XClearWindow(IntPtr display, IntPtr window);
        [DllImport(Library)] public static extern int XFillArc(
            IntPtr display, IntPtr drawable, IntPtr gc, int x, int y, uint width, uint height, int from, int extent);
        [DllImport(Library)] public static extern int XDrawLine(IntPtr display, IntPtr drawable, IntPtr gc, int x1, int y1, int x2, int y2);
        [DllImport(Library)] public static extern int XDrawString(IntPtr display, IntPtr drawable, IntPtr gc, int x, int y, string text, int length);
    }
}
