using System;
using System.Runtime.InteropServices;
using System.Text;

namespace Orbelantine.Swig
{
    /// <summary>Text between the native library and the host: the callbacks that every module
    /// registers, and the two directions of the crossing. Safe from any thread.</summary>
    public static unsafe class NativeText
    {
        /// <summary>Copies a native text; the result is taken once with <see cref="Take"/>.</summary>
        [UnmanagedFunctionPointer(CallingConvention.StdCall)]
        public delegate IntPtr Callback(IntPtr text);

        /// <summary>How text goes in. LPUTF8Str by its number: netstandard2.0 has no name for it.</summary>
        internal const UnmanagedType MarshalNarrow = (UnmanagedType)48;
        internal const UnmanagedType MarshalWide = UnmanagedType.LPWStr;

        // Static fields, so that the native side may call them as long as the process lives.
        public static readonly Callback Narrow = CopyNarrow;
        public static readonly Callback Wide = CopyWide;

        // What an override returned, until the native caller has copied it.
        [ThreadStatic]
        private static IntPtr returned;

        /// <summary>The text behind a callback's result; frees what the callback kept.</summary>
        public static string Take(IntPtr copy)
        {
            if (copy == IntPtr.Zero)
                return null;
            GCHandle handle = GCHandle.FromIntPtr(copy);
            string text = (string)handle.Target;
            handle.Free();
            return text;
        }

        /// <summary>An override's result as native narrow text, valid until the next one on this
        /// thread.</summary>
        public static IntPtr GiveNarrow(string text)
        {
            if (text == null)
                return IntPtr.Zero;
            byte[] bytes = Encoding.UTF8.GetBytes(text);
            returned = Marshal.ReAllocCoTaskMem(returned, bytes.Length + 1);
            Marshal.Copy(bytes, 0, returned, bytes.Length);
            Marshal.WriteByte(returned, bytes.Length, 0);
            return returned;
        }

        /// <summary>The same as native wide text.</summary>
        public static IntPtr GiveWide(string text)
        {
            if (text == null)
                return IntPtr.Zero;
            returned = Marshal.ReAllocCoTaskMem(returned, 2 * (text.Length + 1));
            Marshal.Copy(text.ToCharArray(), 0, returned, text.Length);
            Marshal.WriteInt16(returned, 2 * text.Length, 0);
            return returned;
        }

        private static IntPtr CopyNarrow(IntPtr text)
        {
            byte* bytes = (byte*)text;
            int length = 0;
            while (bytes[length] != 0)
                ++length;
            return Keep(length == 0 ? "" : Encoding.UTF8.GetString(bytes, length));
        }

        private static IntPtr CopyWide(IntPtr text)
        {
            return Keep(new string((char*)text));
        }

        private static IntPtr Keep(string text)
        {
            return GCHandle.ToIntPtr(GCHandle.Alloc(text));
        }
    }
}
