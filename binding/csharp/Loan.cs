using System;
using System.Runtime.InteropServices;

namespace Orbelantine.Swig
{
    /// <summary>A shared object on its way to native code. One that the host overrides is pinned for as long
    /// as native code keeps a share of it.</summary>
    internal struct Loan
    {
        private delegate void Release(IntPtr pin);

        // Static, so that native code may call it as long as the process lives.
        private static readonly Release Released = Give;

        // What an override returned, until the native caller has taken its share.
        [ThreadStatic]
        private static Loan returned;

        private HandleRef given;
        private IntPtr holder;

        static Loan()
        {
            orbelantine_register_release(Released);
        }

        /// <summary>For the length of a call.</summary>
        public static Loan Of(NativeObject lent, HandleRef handle)
        {
            var loan = new Loan { given = handle };
            if (lent != null && lent.swigIsCalled)
                loan.holder = orbelantine_lend(handle, lent.swigLend());
            return loan;
        }

        /// <summary>For a native caller, until the next one on this thread.</summary>
        public static IntPtr Return<T>(T lent, Func<T, HandleRef> handleOf) where T : NativeObject
        {
            EndReturned();
            returned = Of(lent, handleOf(lent));
            return returned.Handle.Handle;
        }

        public static void EndReturned()
        {
            returned.End();
            returned = new Loan();
        }

        public HandleRef Handle
        {
            get { return holder == IntPtr.Zero ? given : new HandleRef(given.Wrapper, holder); }
        }

        public void End()
        {
            if (holder != IntPtr.Zero)
                orbelantine_end_lending(holder);
            GC.KeepAlive(given.Wrapper);
        }

        private static void Give(IntPtr pin)
        {
            NativeObject.swigGiveBack(pin);
        }

        [DllImport("orbelantine")]
        private static extern void orbelantine_register_release(Release release);

        [DllImport("orbelantine")]
        private static extern IntPtr orbelantine_lend(HandleRef holder, IntPtr pin);

        [DllImport("orbelantine")]
        private static extern void orbelantine_end_lending(IntPtr holder);
    }
}
