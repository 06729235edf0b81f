using System;
using System.Runtime.InteropServices;

namespace Orbelantine.Swig
{
    /// <summary>What every proxy of a native object is. A proxy refuses to be used once it, or what it is
    /// a part of, is disposed; and an object of the host that native code may call stays out of the
    /// collector's reach, and refuses to be disposed, for as long as that lasts. Any thread.</summary>
    public abstract class NativeObject
    {
        private static readonly object Gate = new object();

        private NativeObject owner;
        private volatile bool isDisposed;
        private GCHandle pin;
        private int loans;

        internal NativeObject() { }

        /// <summary>Who answers for an exception: the host's own object.</summary>
        internal virtual object swigHostObject
        {
            get { return this; }
        }

        /// <summary>The host overrides operations of this, which native code calls.</summary>
        internal virtual bool swigIsCalled
        {
            get { return false; }
        }

        /// <summary>What is given to be called, which is not nothing.</summary>
        internal static T swigGiven<T>(T callee) where T : NativeObject
        {
            if (callee == null)
                throw new ArgumentNullException(null, "A callback is wanted here, and there is none (" + typeof(T).FullName + ").");
            return callee;
        }

        /// <summary>A part of a native object, which keeps the proxy of the whole alive.</summary>
        internal static T swigPart<T>(T part, NativeObject whole) where T : NativeObject
        {
            if (part != null)
            {
                part.owner = whole;
                GC.SuppressFinalize(part);
            }
            return part;
        }

        /// <summary>What native code shows for the length of a call; see <see cref="swigExpire"/>.</summary>
        internal static T swigShown<T>(T shown) where T : NativeObject
        {
            GC.SuppressFinalize(shown);
            return shown;
        }

        /// <summary>The call is over.</summary>
        internal void swigExpire()
        {
            isDisposed = true;
        }

        /// <summary>The handle for one call, which keeps this alive.</summary>
        internal HandleRef swigUse(IntPtr handle)
        {
            if (handle == IntPtr.Zero || isDisposed)
                throw new ObjectDisposedException(GetType().FullName);
            for (NativeObject whole = owner; whole != null; whole = whole.owner)
                if (whole.isDisposed)
                    throw new ObjectDisposedException(
                        GetType().FullName, "This belongs to an object of " + whole.GetType().FullName + " that is disposed.");
            return new HandleRef(this, handle);
        }

        /// <summary>Takes the handle away, for one thread to delete.</summary>
        internal HandleRef swigTake(ref IntPtr handle)
        {
            isDisposed = true;
            return new HandleRef(this, System.Threading.Interlocked.Exchange(ref handle, IntPtr.Zero));
        }

        /// <summary>Native code takes hold of this once more; gives the pin.</summary>
        internal IntPtr swigLend()
        {
            lock (Gate)
            {
                if (loans++ == 0)
                    pin = GCHandle.Alloc(this);
                return GCHandle.ToIntPtr(pin);
            }
        }

        /// <summary>Native code has let go of one hold.</summary>
        internal void swigGiveBack()
        {
            lock (Gate)
                if (--loans == 0)
                    pin.Free();
        }

        internal static void swigGiveBack(IntPtr pin)
        {
            ((NativeObject)GCHandle.FromIntPtr(pin).Target).swigGiveBack();
        }

        internal void swigRefuseWhileLent()
        {
            if (loans > 0)
                Loan.EndReturned();
            if (loans > 0)
                throw new InvalidOperationException(
                    "Native code holds this " + GetType().FullName + " and may call it. First dispose what it was given to, or give that another.");
        }
    }
}
