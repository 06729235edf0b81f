using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>One callback family: its three classes, and objects of them.</summary>
    public sealed class Family
    {
        /// <summary>Every family that the proxies declare.</summary>
        public static readonly Family[] All =
            (from type in typeof(connection).Assembly.GetTypes()
             where type.GetMethod("unpin") != null && !type.IsNested
             select new Family(type)).ToArray();

        // As the library spells them; what is not here is a text, a number, a function or an enumeration.
        private static readonly Dictionary<Type, string> Spelled = new Dictionary<Type, string>
        {
            { typeof(bool), "bool" },
            { typeof(uint), "uint32_t" },
            { typeof(long), "int64_t" },
            { typeof(ulong), "uint64_t" },
            { typeof(double), "double" },
            { typeof(void), "void" },
            { typeof(SWIGTYPE_p_boost__asio__ip__address), "boost::asio::ip::address" },
            { typeof(ByteVector), "std::vector< uint8_t >" },
            { typeof(MapStringString), "stdMapStringString" },
            { typeof(MapStringWString), "stdMapStringWstring" },
            { typeof(MapUintWString), "stdMapUintWstring" },
            { typeof(MapWstringWstring), "stdMapWstringWstring" },
            { typeof(BluetoothPeer), "boost::shared_ptr< orbelantine::BluetoothPeer >" },
            { typeof(BluetoothPeerVector), "std::vector< boost::shared_ptr< orbelantine::BluetoothPeer > >" },
        };

        private static readonly string[] OfFixedWidth =
        {
            "IntCallbackFunction", "IntIntString", "ThreeIntCallback", "TwoUIntOneIntReturnBoolCallback", "TwoUintsIntCallback",
            "MouseEvent", "PointerEvent",
        };

        private Family(Type impl)
        {
            Name = impl.Name.Substring(0, impl.Name.Length - "Impl".Length);
            Module = impl.Namespace.Split('.').Last();
            Function = impl.Assembly.GetType(impl.Namespace + "." + Name, true);
            Signal = impl.Assembly.GetType(impl.Namespace + ".Signal" + Name, true);
            Call = impl.GetMethod("call");
            Parameters = Call.GetParameters().Select(parameter => parameter.ParameterType).ToArray();
        }

        public string Name { get; }
        public string Module { get; }
        public Type Function { get; }
        public Type Signal { get; }
        public MethodInfo Call { get; }
        public Type[] Parameters { get; }

        public bool HasResult => Call.ReturnType == typeof(bool);

        /// <summary>As the library's messages spell it.</summary>
        public string Signature => Spelled[Call.ReturnType] + " (" + string.Join(",", Parameters.Select(Spell)) + ")";

        public static Family Of(Type function) => All.Single(family => family.Function == function);

        /// <summary>A function of the host's delegate, for the caller to dispose.</summary>
        public IDisposable NewFunction(HostCallback callback) => (IDisposable)Raw.Invoke(Function, "From", DelegateOf(callback));

        /// <summary>A signal that native code can fire.</summary>
        public object NewSignal() => Raw.Wrap(Signal, orbTestNewSignal(Name));

        public void FireNatively(object signal) =>
            orbTestFire(Name, ((HandleRef)Raw.Invoke(Signal, "getCPtr", signal)).Handle);

        public connection Connect(object signal, HostCallback callback, params object[] group) =>
            (connection)Raw.Invoke(signal, "connect", group.Concat(new object[] { DelegateOf(callback) }).ToArray());

        public override string ToString() => Name;

        private Delegate DelegateOf(HostCallback callback) =>
            callback.As(Function.GetMethod("From").GetParameters()[0].ParameterType);

        private string Spell(Type type, int i)
        {
            if (type == typeof(int))
                return OfFixedWidth.Contains(Name) ? "int32_t" : "int";
            if (type == typeof(error_code))
                return "boost::system::error_code" + (Name.Contains("ConstRef") ? " const &" : "");
            if (type == typeof(string))
                return IsWide(i) ? "wstring_director" : "std::string";
            if (type.IsEnum)
                return "orbelantine::" + (type.IsNested ? type.DeclaringType.Name + "::" : "") + type.Name;
            return Spelled.TryGetValue(type, out string spelled) ? spelled : "boost::function< " + Of(type).Signature + " >";
        }

        private bool IsWide(int i) =>
            Name.IndexOf("wstring", StringComparison.OrdinalIgnoreCase) >= 0 && !(i == 0 && Name.StartsWith("String"));

        [DllImport("orbelantine_test_signals")]
        private static extern IntPtr orbTestNewSignal(string name);

        [DllImport("orbelantine_test_signals")]
        private static extern void orbTestFire(string name, IntPtr signal);
    }
}
