using System;
using System.Diagnostics;

namespace Orbelantine.Swig
{
    /// <summary>An exception that left an operation of the host.</summary>
    public sealed class HostExceptionEventArgs : EventArgs
    {
        internal HostExceptionEventArgs(object target, string operation, Exception exception)
        {
            Target = target;
            Operation = operation;
            Exception = exception;
        }

        /// <summary>The host's object, or its delegate.</summary>
        public object Target { get; }
        /// <summary>The name of the operation that native code called.</summary>
        public string Operation { get; }
        public Exception Exception { get; }
    }

    /// <summary>What native code calls in the host.</summary>
    public static class HostCallbacks
    {
        /// <summary>An override or a callback ended by an exception, which can't go on into native code.
        /// Native code gets nothing for its result: zero, false or no object. Raised on the thread of the
        /// call. If nobody listens, the process ends with the exception's trace, unless it is ending
        /// and the callback has met an object that was disposed for that.</summary>
        public static event EventHandler<HostExceptionEventArgs> UnhandledException;

        internal static void Report(NativeObject target, string operation, Exception exception)
        {
            EventHandler<HostExceptionEventArgs> listeners = UnhandledException;
            if (listeners == null && exception is ObjectDisposedException && ProcessEnd.HasBegun)
                return;
            if (listeners == null)
                End(target.swigHostObject, operation, exception);
            try
            {
                listeners(null, new HostExceptionEventArgs(target.swigHostObject, operation, exception));
            }
            catch (Exception second)
            {
                End(listeners, "UnhandledException", second);
            }
        }

        private static void End(object target, string operation, Exception exception)
        {
            string what = "An exception left " + operation + " of " + target.GetType().FullName + ", which native code had called.";
            Console.Error.WriteLine(what + Environment.NewLine + exception);
            // Mono would have a debugger look into every thread first.
            if (Type.GetType("Mono.Runtime") != null)
                Process.GetCurrentProcess().Kill();
            Environment.FailFast(what, exception);
        }
    }
}
