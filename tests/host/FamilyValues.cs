using System;
using System.Collections.Generic;
using System.Globalization;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>Arguments of a callback family by their types, and what is seen in arguments that
    /// arrive.</summary>
    public sealed class FamilyValues : IDisposable
    {
        private static readonly Dictionary<Type, Func<int, object>> Samples = new Dictionary<Type, Func<int, object>>
        {
            { typeof(bool), i => i % 2 == 0 },
            { typeof(int), i => -100 - i },
            { typeof(uint), i => 4000000000u + (uint)i },
            { typeof(long), i => long.MinValue + i },
            { typeof(ulong), i => ulong.MaxValue - (ulong)i },
            { typeof(double), i => 0.1 + i },
            { typeof(string), i => Text(i) },
            { typeof(error_code), i => new error_code(5 + i, Common.GlobalCategory) },
            { typeof(ByteVector), i => new ByteVector(new byte[] { 0, 255, (byte)i }) },
            { typeof(MapStringString), i => new MapStringString { { "", Text(i) }, { "key", "" } } },
            { typeof(MapStringWString), i => new MapStringWString { { "", Text(i) }, { "key", "" } } },
            { typeof(MapUintWString), i => new MapUintWString { { 0, Text(i) }, { 4000000000u, "" } } },
            { typeof(MapWstringWstring), i => new MapWstringWstring { { "", Text(i) }, { "key", "" } } },
            { typeof(BluetoothPeer), NewPeer },
            { typeof(BluetoothPeerVector), i => new BluetoothPeerVector(new[] { NewPeer(i), NewPeer(i + 1) }) },
            { typeof(SWIGTYPE_p_boost__asio__ip__address), NewAddress },
        };

        private readonly List<HostCallback> nested = new List<HostCallback>();

        public FamilyValues(Type[] types) => Arguments = types.Select(Sample).ToArray();

        public object[] Arguments { get; }

        /// <summary>Calls of the functions among the arguments.</summary>
        public int NestedCalls => nested.Sum(callback => callback.Calls);

        /// <summary>What a callback sees in arguments like these.</summary>
        public static string Expected(Type[] types) =>
            string.Join("; ", types.Select((type, i) =>
                IsFunction(type) ? "function" :
                type == typeof(SWIGTYPE_p_boost__asio__ip__address) ? "address " + i : Show(SampleOf(type, i))));

        /// <summary>The same in arguments that arrived. The functions among them are called; what was given
        /// to the callback to keep is let go of.</summary>
        public static string Seen(object[] arguments) => string.Join("; ", arguments.Select(See));

        [DllImport("orbelantine_test_signals", EntryPoint = "orbTestNestedCalls")]
        public static extern int NativeNestedCalls();

        public void Dispose()
        {
            foreach (object argument in Arguments)
                Release(argument);
        }

        private object Sample(Type type, int i)
        {
            if (!IsFunction(type))
                return SampleOf(type, i);
            nested.Add(new HostCallback(arguments => { Seen(arguments); return false; }));
            return Family.Of(type).NewFunction(nested.Last());
        }

        private static object SampleOf(Type type, int i) => type.IsEnum ? Enum.ToObject(type, 1) : Samples[type](i);

        private static bool IsFunction(Type type) => Family.All.Any(family => family.Function == type);

        private static string See(object argument)
        {
            string seen = argument is SWIGTYPE_p_boost__asio__ip__address ? "address " + TakeAddress(argument) : Show(argument);
            if (seen == "function")
                using (FamilyValues values = new FamilyValues(Family.Of(argument.GetType()).Parameters))
                    argument.GetType().GetMethod("call").Invoke(argument, values.Arguments);
            if (!(argument is SWIGTYPE_p_boost__asio__ip__address))
                Release(argument);
            return seen;
        }

        private static string Show(object value)
        {
            if (value is error_code)
                return "code " + ((error_code)value).value();
            if (value is BluetoothPeer)
                return "peer " + ((BluetoothPeer)value).name() + " " + ((BluetoothPeer)value).deviceClass();
            if (value is BluetoothPeerVector)
                return "peers " + string.Join(", ", ((BluetoothPeerVector)value).Select(Show));
            if (value is ByteVector)
                return "bytes " + string.Join(" ", (ByteVector)value);
            if (value.GetType().Name.StartsWith("Map"))
                return "map " + string.Join(" ", ((System.Collections.IEnumerable)value).Cast<object>());
            return IsFunction(value.GetType()) ? "function" : Convert.ToString(value, CultureInfo.InvariantCulture);
        }

        private static void Release(object argument)
        {
            if (argument is SWIGTYPE_p_boost__asio__ip__address)
                TakeAddress(argument);
            (argument as IDisposable)?.Dispose();
        }

        private static string Text(int i) => "grün \U0001F4F1" + i;

        private static BluetoothPeer NewPeer(int i)
        {
            using (var address = new CMacAddress(0xA1B2C3D4E5F6))
                return new BluetoothPeer(address, Text(i), (uint)(0x200 + i), true);
        }

        // An address has no class: the host only hands its handle on.
        private static object NewAddress(int i) =>
            Activator.CreateInstance(typeof(SWIGTYPE_p_boost__asio__ip__address),
                                     BindingFlags.Instance | BindingFlags.NonPublic, null,
                                     new object[] { orbTestNewAddress(i), true }, null);

        private static int TakeAddress(object address) =>
            orbTestTakeAddress(Raw.Handle((SWIGTYPE_p_boost__asio__ip__address)address));

        [DllImport("orbelantine_test_signals")]
        private static extern IntPtr orbTestNewAddress(int number);

        [DllImport("orbelantine_test_signals")]
        private static extern int orbTestTakeAddress(IntPtr address);
    }
}
