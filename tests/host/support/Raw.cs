using System;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using Orbelantine.Swig;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>Flat calls by name, for what the proxies can't produce: null handles, handles of another
    /// class, and native dispatch on an object that the host overrides.</summary>
    public static class Raw
    {
        private const BindingFlags AnyStatic = BindingFlags.Static | BindingFlags.Public | BindingFlags.NonPublic;

        /// <summary>What a call gave: its result, and the exception it left pending or null.</summary>
        public struct Outcome
        {
            public object Result;
            public Exception Error;
        }

        public static readonly string[] Modules = { "common", "common_osal", "avstack_base", "bluetooth", "input", "audio" };

        /// <summary>The class that declares a module's flat functions.</summary>
        public static Type FunctionsOf(string module) =>
            typeof(KVStore).Assembly.GetTypes().Single(
                type => type.Namespace == "Orbelantine.Swig." + module && type.Name.EndsWith("PINVOKE"));

        /// <summary>Calls a function; handles are given as IntPtr, null is the null handle.</summary>
        public static Outcome Try(string module, string name, params object[] arguments)
        {
            Type functions = FunctionsOf(module);
            MethodInfo function = functions.GetMethod(name, AnyStatic);
            Assert.True(function != null, "no function " + name + " in " + module);
            object result = function.Invoke(null, function.GetParameters().Zip(arguments, Fit).ToArray());
            return new Outcome { Result = result, Error = Pending(functions) };
        }

        /// <summary>The same, throwing what is left pending.</summary>
        public static object Call(string module, string name, params object[] arguments)
        {
            Outcome outcome = Try(module, name, arguments);
            if (outcome.Error != null)
                throw outcome.Error;
            return outcome.Result;
        }

        public static IntPtr CallHandle(string module, string name, params object[] arguments) =>
            (IntPtr)Call(module, name, arguments);

        public static string CallText(string module, string name, params object[] arguments) =>
            NativeText.Take(CallHandle(module, name, arguments));

        /// <summary>The handle with which a proxy stands for a T.</summary>
        public static IntPtr Handle<T>(T proxy)
        {
            MethodInfo getHandle = typeof(T).GetMethod("getCPtr", AnyStatic | BindingFlags.DeclaredOnly);
            return ((HandleRef)getHandle.Invoke(null, new object[] { proxy })).Handle;
        }

        /// <summary>A proxy for a native object, which it owns.</summary>
        public static object Wrap(Type type, IntPtr handle) =>
            Activator.CreateInstance(type, BindingFlags.Instance | BindingFlags.NonPublic, null, new object[] { handle, true }, null);

        /// <summary>Calls a method by name, public or not, of an object or of a type.</summary>
        public static object Invoke(object target, string method, params object[] arguments)
        {
            Type type = target as Type ?? target.GetType();
            try
            {
                return type.InvokeMember(method, BindingFlags.InvokeMethod | BindingFlags.Instance | AnyStatic, null, target, arguments);
            }
            catch (TargetInvocationException thrown)
            {
                throw thrown.InnerException;
            }
        }

        private static object Fit(ParameterInfo parameter, object argument)
        {
            IntPtr handle = argument is IntPtr ? (IntPtr)argument : IntPtr.Zero;
            if (parameter.ParameterType == typeof(HandleRef))
                return new HandleRef(null, handle);
            return parameter.ParameterType == typeof(IntPtr) ? handle : argument;
        }

        private static Exception Pending(Type functions)
        {
            Type pending = functions.GetNestedType("SWIGPendingException", BindingFlags.Public | BindingFlags.NonPublic);
            bool isPending = (bool)pending.GetProperty("Pending", AnyStatic).GetValue(null, null);
            return isPending ? (Exception)pending.GetMethod("Retrieve", AnyStatic).Invoke(null, null) : null;
        }
    }
}
