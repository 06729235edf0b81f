using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>No object where one is wanted, and no delegate.</summary>
    public sealed class NullTests
    {
        public void DeletingUpcastingAndSettingFieldsOfNothingDoesNothing()
        {
            var called = new List<string>();
            foreach (string module in Raw.Modules)
                foreach (MethodInfo function in Raw.FunctionsOf(module).GetMethods().Where(TakesOneObject))
                {
                    object[] nothing = function.GetParameters().Select(parameter => Nothing(parameter.ParameterType)).ToArray();
                    object result = Raw.Call(module, function.Name, nothing);
                    Assert.Equal(IntPtr.Zero, result ?? IntPtr.Zero, function.Name);
                    called.Add(function.Name);
                }
            foreach (string name in new[] { "delete_IMediaBuffer", "HIDDeviceClient_SWIGSmartPtrUpcast", "InputFormat_mouseType_set" })
                Assert.True(called.Contains(name), "no " + name);
        }

        public void NoObjectWhereAReferenceIsWantedIsNamedByItsType()
        {
            const string noStore = "orbelantine::KVStore const & type is null";
            const string noData = "std::vector< uint8_t > const & type is null";
            const string noBytes = "std::vector< unsigned char > const & type is null";
            const string noValue = "std::map< std::string,orbelantine::KVStore >::mapped_type const & type is null";
            using (var store = new KVStore())
            {
                Assert.NullArgument(noStore, () => store.getKVStoreAt("key", null));
                Assert.NullArgument(noStore, () => store.setKVStoreAt("key", null));
                Assert.NullArgument(noData, () => store.getDataAt("key", null));
                Assert.NullArgument(noData, () => store.setDataAt("key", null));
                Assert.NullArgument(noValue, () => store.getKVStoreMap().Add("key", null));
                Assert.NullArgument(noValue, () => store.getKVStoreMap()["key"] = null);
                Assert.True(store.getKVStoreMap().empty(), "the key was inserted");
            }
            Assert.NullArgument(noStore, () => new HIDEventsPacker(null));
            Assert.NullArgument(noBytes, () => new ByteVector().AddRange(null));
            Assert.NullArgument("std::vector< boost::shared_ptr< orbelantine::BluetoothPeer > > const & type is null",
                                () => new BluetoothPeerVector().AddRange(null));
            Assert.NullArgument("boost::system::error_category const & type is null", () => new error_code(5, null));
            using (var composite = new InputContextComposite())
            {
                composite.setMainInputContext(new FakeSurface());
                Assert.NullArgument("orbelantine::IInputContext::Point & type is null", () => composite.screenToInputSurface(null));
                Assert.NullArgument("orbelantine::IInputContext::Rect & type is null", () => composite.getInputSurfaceRectWithinScreen(null));
            }
        }

        public void ACopyOfNothingIsNamedByItsTypeAndIsNothing()
        {
            ExpectNoCopy("error_code__SWIG_2", "boost::system::error_code");
            ExpectNoCopy("KVStore__SWIG_1", "orbelantine::KVStore");
            ExpectNoCopy("ByteVector__SWIG_1", "std::vector< unsigned char >");
            ExpectNoCopy("StringVector__SWIG_1", "std::vector< std::string >");
            ExpectNoCopy("KVStoreMap__SWIG_1", "std::map< std::string,orbelantine::KVStore,std::less< std::string > >");
            ExpectNoCopy("CMacAddress__SWIG_2", "orbelantine::CMacAddress");
        }

        public void OnlyAGivenDelegateOfAClassThatTakesThemReplacesItsBehaviour()
        {
            IntPtr buffer = Raw.CallHandle("avstack_base", "new_IMediaBuffer");
            Assert.Equal((byte)99, TypeOnceConnected(buffer, Answering99));
            Assert.Equal((byte)0, TypeOnceConnected(buffer, type => null));
            Raw.Call("avstack_base", "delete_IMediaBuffer", buffer);

            IntPtr mouse = Raw.CallHandle("input", "new_IInputMediaBufferMouse__SWIG_4", 1, 2, (byte)0);
            IntPtr upcast = Raw.CallHandle("input", "IInputMediaBufferMouse_SWIGSmartPtrUpcast", mouse);
            Assert.Equal((byte)10, TypeOnceConnected(upcast, Answering99));
            Raw.Call("avstack_base", "delete_IMediaBuffer", upcast);
            Raw.Call("input", "delete_IInputMediaBufferMouse", mouse);
        }

        private static bool TakesOneObject(MethodInfo function)
        {
            // The texts of a configuration are nobody's fields.
            bool setsField = function.Name.EndsWith("_set") && function.GetParameters().Length == 2;
            return setsField || function.Name.StartsWith("delete_") || function.Name.EndsWith("Upcast");
        }

        // No object, or a field's value.
        private static object Nothing(Type type) =>
            type.IsPrimitive && type != typeof(IntPtr) ? Convert.ChangeType(5, type) : IntPtr.Zero;

        private static void ExpectNoCopy(string constructor, string type)
        {
            Raw.Outcome outcome = Raw.Try("common", "new_" + constructor, IntPtr.Zero);
            Assert.True(outcome.Error is ArgumentNullException, constructor);
            Assert.Equal(type + " const & type is null", outcome.Error.Message);
            Assert.Equal(IntPtr.Zero, outcome.Result, constructor);
        }

        private static object TypeOnceConnected(IntPtr buffer, Func<Type, Delegate> delegateOf)
        {
            MethodInfo connect = Raw.FunctionsOf("avstack_base").GetMethod("IMediaBuffer_director_connect");
            Delegate[] delegates = connect.GetParameters().Skip(1).Select(parameter => delegateOf(parameter.ParameterType)).ToArray();
            Raw.Call("avstack_base", connect.Name, new object[] { buffer }.Concat(delegates).ToArray());
            object type = Raw.Call("avstack_base", "IMediaBuffer_getType", buffer);
            GC.KeepAlive(delegates);
            return type;
        }

        private static byte Ninetynine()
        {
            return 99;
        }

        // A delegate of the wanted type if it is one for a byte, else none.
        private static Delegate Answering99(Type type)
        {
            MethodInfo wanted = type.GetMethod("Invoke");
            bool fits = wanted.ReturnType == typeof(byte) && wanted.GetParameters().Length == 0;
            MethodInfo answer = typeof(NullTests).GetMethod("Ninetynine", BindingFlags.Static | BindingFlags.NonPublic);
            return fits ? Delegate.CreateDelegate(type, answer) : null;
        }
    }
}
