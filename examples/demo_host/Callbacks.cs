using System;
using System.Runtime.InteropServices;
using Orbelantine.Swig.common;

namespace Orbelantine.DemoHost
{
    /// <summary>Keeps a callback out of the collector's reach from pin to unpin. Native code may let go on
    /// any thread.</summary>
    internal struct Hold
    {
        private GCHandle handle;

        public void Take(object callback)
        {
            handle = GCHandle.Alloc(callback);
        }

        public bool Release()
        {
            handle.Free();
            // The host deletes it.
            return false;
        }
    }

    /// <summary>Gives a result on as a number and a text; 0 is success.</summary>
    public sealed class OnCode : ErrorCodeCallbackImpl
    {
        private readonly Action<int, string> action;
        private Hold hold;

        private OnCode(Action<int, string> action)
        {
            this.action = action;
        }

        /// <summary>A function for native code, to be disposed once it has been given.</summary>
        public static ErrorCodeCallback Function(Action<int, string> action)
        {
            return new ErrorCodeCallback(new OnCode(action));
        }

        public override void pin() { hold.Take(this); }
        public override bool unpin() { return hold.Release(); }

        public override void call(error_code code)
        {
            using (code)
                action(code.value(), code.message());
        }
    }

    /// <summary>Tells that something has happened.</summary>
    public sealed class OnEvent : VoidCallbackImpl
    {
        private readonly Action action;
        private Hold hold;

        private OnEvent(Action action)
        {
            this.action = action;
        }

        public static VoidCallback Function(Action action)
        {
            return new VoidCallback(new OnEvent(action));
        }

        public override void pin() { hold.Take(this); }
        public override bool unpin() { return hold.Release(); }
        public override void call() { action(); }
    }
}
