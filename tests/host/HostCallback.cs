using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;
using System.Reflection.Emit;

namespace Orbelantine.HostTests
{
    /// <summary>What stands behind a host's callback of any family: its implementation forwards here.</summary>
    public sealed class HostCallback
    {
        private static readonly ModuleBuilder Forwarders = AssemblyBuilder
            .DefineDynamicAssembly(new AssemblyName("HostCallbacks"), AssemblyBuilderAccess.Run)
            .DefineDynamicModule("HostCallbacks");
        private static readonly Dictionary<Type, Type> Known = new Dictionary<Type, Type>();

        private readonly Func<object[], bool> called;

        /// <summary>`called` gets the arguments; its result is the call's, where the family has one.</summary>
        public HostCallback(Func<object[], bool> called)
        {
            this.called = called;
        }

        public HostCallback(Action called = null)
            : this(arguments => { called?.Invoke(); return false; })
        {
        }

        public int Pins { get; private set; }
        public int Unpins { get; private set; }
        public int Calls { get; private set; }

        /// <summary>A new object of a class derived from `impl` that forwards to this.</summary>
        public object ImplementationOf(Type impl)
        {
            Type forwarder;
            if (!Known.TryGetValue(impl, out forwarder))
                Known[impl] = forwarder = Derive(impl);
            return Activator.CreateInstance(forwarder, this);
        }

        /// <summary>Called by the forwarders.</summary>
        public bool Called(string operation, object[] arguments)
        {
            switch (operation)
            {
                case "pin":
                    ++Pins;
                    return false;
                case "unpin":
                    ++Unpins;
                    return false;
                default:
                    ++Calls;
                    return called(arguments);
            }
        }

        private static Type Derive(Type impl)
        {
            TypeBuilder type = Forwarders.DefineType("Host" + impl.Name, TypeAttributes.Public, impl);
            FieldBuilder target = type.DefineField("target", typeof(HostCallback), FieldAttributes.Private);
            ILGenerator body = type.DefineConstructor(MethodAttributes.Public, CallingConventions.Standard,
                                                      new[] { typeof(HostCallback) }).GetILGenerator();
            body.Emit(OpCodes.Ldarg_0);
            body.Emit(OpCodes.Call, impl.GetConstructor(Type.EmptyTypes));
            body.Emit(OpCodes.Ldarg_0);
            body.Emit(OpCodes.Ldarg_1);
            body.Emit(OpCodes.Stfld, target);
            body.Emit(OpCodes.Ret);
            foreach (string operation in new[] { "pin", "unpin", "call" })
                Forward(type, target, impl.GetMethod(operation));
            return type.CreateType();
        }

        private static void Forward(TypeBuilder type, FieldBuilder target, MethodInfo operation)
        {
            Type[] parameters = operation.GetParameters().Select(parameter => parameter.ParameterType).ToArray();
            MethodBuilder method = type.DefineMethod(operation.Name, MethodAttributes.Public | MethodAttributes.Virtual,
                                                     operation.ReturnType, parameters);
            ILGenerator body = method.GetILGenerator();
            body.Emit(OpCodes.Ldarg_0);
            body.Emit(OpCodes.Ldfld, target);
            body.Emit(OpCodes.Ldstr, operation.Name);
            body.Emit(OpCodes.Ldc_I4, parameters.Length);
            body.Emit(OpCodes.Newarr, typeof(object));
            for (int i = 0; i < parameters.Length; ++i)
            {
                body.Emit(OpCodes.Dup);
                body.Emit(OpCodes.Ldc_I4, i);
                body.Emit(OpCodes.Ldarg, (short)(i + 1));
                if (parameters[i].IsValueType)
                    body.Emit(OpCodes.Box, parameters[i]);
                body.Emit(OpCodes.Stelem_Ref);
            }
            body.Emit(OpCodes.Callvirt, typeof(HostCallback).GetMethod("Called"));
            if (operation.ReturnType == typeof(void))
                body.Emit(OpCodes.Pop);
            body.Emit(OpCodes.Ret);
        }
    }
}
