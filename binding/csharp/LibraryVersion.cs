using System;
using System.Runtime.InteropServices;

namespace Orbelantine.Swig
{
    /// <summary>This assembly calls the native library by the addresses of its functions alone: another
    /// version may take other arguments.</summary>
    internal static partial class LibraryVersion
    {
        /// <summary>Throws if the native library is not of this assembly's version.</summary>
        public static void Check()
        {
            Compare(Marshal.PtrToStringAnsi(orbelantine_version()));
        }

        internal static void Compare(string version)
        {
            if (version != Wanted)
                throw new InvalidOperationException("Orbelantine.Swig.dll is of version " + Wanted + " and the native library orbelantine of version " +
                                                    version + ". Install both from one build.");
        }

        [DllImport("orbelantine")]
        private static extern IntPtr orbelantine_version();
    }
}
