using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>One callback family: its three classes, and objects of them.</summary>
    public sealed class Family
    {
        private const BindingFlags AnyInstance = BindingFlags.Instance | BindingFlags.Public | BindingFlags.NonPublic;

        private Family(string module, string name, string signature)
        {
            Name = name;
            Signature = signature;
            Function = TypeOf(module, name);
            Impl = TypeOf(module, name + "Impl");
            Signal = TypeOf(module, "Signal" + name);
            Call = Impl.GetMethod("call");
        }

        public string Name { get; }
        /// <summary>As the library's messages spell it.</summary>
        public string Signature { get; }
        public Type Function { get; }
        public Type Impl { get; }
        public Type Signal { get; }
        public MethodInfo Call { get; }

        public bool HasResult
        {
            get { return Call.ReturnType == typeof(bool); }
        }

        public static IEnumerable<Family> All
        {
            get { return Table.Select(row => row.Split(new[] { ' ' }, 3)).Select(row => new Family(row[0], row[1], row[2])); }
        }

        public static Family Of(Type function)
        {
            return All.Single(family => family.Function == function);
        }

        /// <summary>A function of the host's delegate, for the caller to dispose.</summary>
        public IDisposable NewFunction(HostCallback callback)
        {
            MethodInfo from = Function.GetMethod("From");
            return (IDisposable)from.Invoke(null, new object[] { callback.As(from.GetParameters()[0].ParameterType) });
        }

        /// <summary>A signal that native code can fire.</summary>
        public object NewSignal()
        {
            return Activator.CreateInstance(Signal, AnyInstance, null, new object[] { orbTestNewSignal(Name), true }, null);
        }

        public void FireNatively(object signal)
        {
            IntPtr handle = ((HandleRef)Signal.GetMethod("getCPtr", BindingFlags.Static | BindingFlags.NonPublic)
                .Invoke(null, new[] { signal })).Handle;
            orbTestFire(Name, handle);
        }

        public connection Connect(object signal, HostCallback callback, params object[] group)
        {
            Type type = Function.GetMethod("From").GetParameters()[0].ParameterType;
            return (connection)Invoke(signal, "connect", group.Concat(new object[] { callback.As(type) }).ToArray());
        }

        public object Invoke(object target, string method, params object[] arguments)
        {
            try
            {
                return target.GetType().InvokeMember(method, BindingFlags.InvokeMethod | AnyInstance, null, target, arguments);
            }
            catch (TargetInvocationException thrown)
            {
                throw thrown.InnerException;
            }
        }

        /// <summary>Arguments for a call, the same as native firings give.</summary>
        public FamilyValues NewArguments()
        {
            return new FamilyValues(Call.GetParameters().Select(parameter => parameter.ParameterType).ToArray());
        }

        public override string ToString()
        {
            return Name;
        }

        private static Type TypeOf(string module, string name)
        {
            return typeof(connection).Assembly.GetType("Orbelantine.Swig." + module + "." + name, true);
        }

        [DllImport("orbelantine_test_signals")]
        private static extern IntPtr orbTestNewSignal(string name);

        [DllImport("orbelantine_test_signals")]
        private static extern void orbTestFire(string name, IntPtr signal);

        // Module, name, and the signature to the letter.
        private static readonly string[] Table =
        {
            "common AddressCallback void (boost::asio::ip::address)",
            "common AddressErrorCodeCallback void (boost::asio::ip::address,boost::system::error_code)",
            "common BoolCallback void (bool)",
            "common BoolRequestCallback bool ()",
            "common BoolStringCallback void (bool,std::string)",
            "common BoolStringErrorCodeCallback void (bool,std::string,boost::system::error_code)",
            "common BoolStringStringCallback void (bool,std::string,std::string)",
            "common BoolWithErrorCallback void (bool,boost::system::error_code)",
            "common ByteArrayCallback void (std::vector< uint8_t >)",
            "common ByteArrayErrorCodeCallback void (std::vector< uint8_t >,boost::system::error_code)",
            "common DoubleAddressCallbackErrorCodeCallback void (boost::asio::ip::address,boost::asio::ip::address,boost::function< void (boost::system::error_code) >)",
            "common DoubleAddressErrorCodeCallback void (boost::asio::ip::address,boost::asio::ip::address,boost::system::error_code)",
            "common ErrorCodeCallback void (boost::system::error_code)",
            "common ErrorCodeConstRefCallback void (boost::system::error_code const &)",
            "common FourStringCallback void (std::string,std::string,std::string,std::string)",
            "common IntBoolCallback void (int,bool)",
            "common IntCallbackEvent void (boost::function< void (int) >)",
            "common IntCallbackFunction void (int32_t,boost::function< void (boost::system::error_code) >)",
            "common IntCallback void (int)",
            "common IntErrorCodeCallback void (int,boost::system::error_code)",
            "common IntIntString void (int32_t,int32_t,std::string)",
            "common IntWithIntCallback void (int,boost::function< void (int) >)",
            "common LongCallback void (int64_t)",
            "common StringBoolCallback void (std::string,bool)",
            "common StringCallbackEvent void (boost::function< void (std::string) >)",
            "common StringCallback void (std::string)",
            "common StringIntCallback void (std::string,int)",
            "common StringIntStringWithErrorCallback void (std::string,int,std::string,boost::system::error_code)",
            "common StringIntWithErrorCallback void (std::string,int,boost::system::error_code)",
            "common StringStringMapCallback void (stdMapStringString)",
            "common StringStringMapErrorCallback void (stdMapStringString,boost::system::error_code)",
            "common StringTwoIntCallback void (std::string,int,int)",
            "common StringTwoIntErrorCodeCallback void (std::string,int,int,boost::system::error_code)",
            "common StringTwoUintErrorCodeCallback void (std::string,uint32_t,uint32_t,boost::system::error_code)",
            "common StringTwoUintStringErrorCodeCallback void (std::string,uint32_t,uint32_t,std::string,boost::system::error_code)",
            "common StringWStringMapErrorCallback void (stdMapStringWstring,boost::system::error_code)",
            "common StringWithErrorCallbackEvent void (boost::function< void (std::string,boost::system::error_code) >)",
            "common StringWithErrorCallback void (std::string,boost::system::error_code)",
            "common StringWstringCallback void (std::string,wstring_director)",
            "common StringWstringMapCallback void (stdMapStringWstring)",
            "common ThreeIntCallback void (int32_t,int32_t,int32_t)",
            "common ThreeIntErrorCodeCallback void (int,int,int,boost::system::error_code)",
            "common ThreeStringCallback void (std::string,std::string,std::string)",
            "common TwoBoolCallback void (bool,bool)",
            "common TwoIntCallback void (int,int)",
            "common TwoIntDoubleIntCallback void (int,int,double,int)",
            "common TwoIntErrorCodeCallback void (int,int,boost::system::error_code)",
            "common TwoStringCallback void (std::string,std::string)",
            "common TwoStringErrorCodeCallback void (std::string,std::string,boost::system::error_code)",
            "common TwoStringIntErrorCodeCallback void (std::string,std::string,int,boost::system::error_code)",
            "common TwoUIntOneIntReturnBoolCallback bool (uint32_t,uint32_t,int32_t)",
            "common TwoUIntReturnBoolCallback bool (uint32_t,uint32_t)",
            "common TwoUintCallback void (uint32_t,uint32_t)",
            "common TwoUintsIntCallback void (uint32_t,uint32_t,int32_t)",
            "common TwoUlongCallback void (uint64_t,uint64_t)",
            "common TwoWstringCallback void (wstring_director,wstring_director)",
            "common UintCallback void (uint32_t)",
            "common UintErrorCodeCallback void (uint32_t,boost::system::error_code)",
            "common UintWStringMapCallback void (stdMapUintWstring)",
            "common UlongCallback void (uint64_t)",
            "common VoidCallback void ()",
            "common WStringCallback void (wstring_director)",
            "common WStringIntWithErrorCallback void (wstring_director,int,boost::system::error_code)",
            "common WStringWStringMapCallback void (stdMapWstringWstring)",
            "common WStringWStringMapErrorCallback void (stdMapWstringWstring,boost::system::error_code)",
            "common WstringWithErrorCallback void (wstring_director,boost::system::error_code)",
            "input MouseEvent void (orbelantine::IInputContext::eMouseButton,int32_t,int32_t)",
            "input PointerEvent void (orbelantine::IInputContext::ePointerType,uint32_t,int32_t,int32_t,bool)",
            "bluetooth PeerCallbackError void (boost::shared_ptr< orbelantine::BluetoothPeer >,boost::system::error_code)",
            "bluetooth PeerCallback void (boost::shared_ptr< orbelantine::BluetoothPeer >)",
            "bluetooth PeerListUpdateCallback void (bool,std::vector< boost::shared_ptr< orbelantine::BluetoothPeer > >)",
            "audio AudioStateCallback void (orbelantine::AudioState)",
        };
    }
}
