using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>Null handles where the proxies can't give them.</summary>
    public sealed class NullTests
    {
        private static readonly string[] SharedClasses =
        {
            "IInputMediaBufferTouch", "IInputMediaBufferMouse", "IInputMediaBufferKeyboard", "IInputSource", "IInputTarget",
            "HIDDeviceClient", "HIDEventsPacker", "HIDReportProvider"
        };

        [Test]
        public void DeletingNothingDoesNothing()
        {
            string[] deleted = Named("delete_").Select(name => name.Substring("delete_".Length)).ToArray();
            foreach (string wanted in new[] { "KVStore", "error_code", "connection", "SignalErrorCodeCallback", "IMediaBuffer" }.Concat(SharedClasses))
                Assert.True(deleted.Contains(wanted), "no delete_" + wanted);
            ForEach(name => name.StartsWith("delete_"), (module, name) => Raw.Call(module, name, IntPtr.Zero));
        }

        [Test]
        public void AnUpcastOfNothingIsNothing()
        {
            string[] upcast = Named("_SWIGSmartPtrUpcast").ToArray();
            foreach (string wanted in SharedClasses)
                Assert.True(upcast.Contains(wanted + "_SWIGSmartPtrUpcast"), "no upcast of " + wanted);
            ForEach(name => name.EndsWith("Upcast"),
                    (module, name) => Assert.Equal(IntPtr.Zero, Raw.CallHandle(module, name, IntPtr.Zero), name));
        }

        [Test]
        public void SettingAFieldOfNothingDoesNothing()
        {
            string[] set = Named("_set").ToArray();
            foreach (string wanted in new[] { "IInputMediaBufferMouse_EventData_x_set", "IInputMediaBufferKeyboard_EventData_ch_set",
                                              "IInputMediaBufferTouch_EventData_id_set", "InputFormat_mouseType_set" })
                Assert.True(set.Contains(wanted), "no " + wanted);
            ForEach(name => name.EndsWith("_set"), (module, name) =>
            {
                // The texts of a configuration are nobody's fields.
                if (Function(module, name).GetParameters().Length == 2)
                    Raw.Call(module, name, IntPtr.Zero, FieldValue(module, name));
            });
        }

        [Test]
        public void ACopyOfNothingIsReportedAndIsNothing()
        {
            var copies = new Dictionary<string, string>
            {
                { "new_error_code__SWIG_2", "boost::system::error_code const & type is null" },
                { "new_KVStore__SWIG_1", "orbelantine::KVStore const & type is null" },
                { "new_ByteVector__SWIG_1", "std::vector< unsigned char > const & type is null" },
                { "new_StringVector__SWIG_1", "std::vector< std::string > const & type is null" },
                { "new_ErrorCodeCallback__SWIG_0", "boost::function< void (boost::system::error_code) > const & type is null" }
            };
            foreach (KeyValuePair<string, string> copy in copies)
            {
                Raw.Outcome outcome = Raw.Try("common", copy.Key, IntPtr.Zero);
                Assert.Equal(copy.Value, outcome.Error?.Message, copy.Key);
                Assert.Equal(IntPtr.Zero, outcome.Result, copy.Key);
            }
        }

        [Test]
        public void AConstructorWithoutItsStoreIsReportedAndMakesNothing()
        {
            foreach (string constructor in new[] { "new_HIDEventsPacker__SWIG_1", "new_HIDReportProvider", "new_InputFormat__SWIG_5" })
            {
                Raw.Outcome outcome = Raw.Try("input", constructor, IntPtr.Zero);
                Assert.Equal("orbelantine::KVStore const & type is null", outcome.Error?.Message, constructor);
                Assert.Equal(IntPtr.Zero, outcome.Result, constructor);
            }
        }

        [Test]
        public void ReferencesAreTestedBeforeTheStoreIsTouched()
        {
            foreach (string method in new[] { "KVStore_getDataAt__SWIG_0", "KVStore_setDataAt", "KVStore_getKVStoreAt__SWIG_0", "KVStore_setKVStoreAt" })
            {
                Raw.Outcome outcome = Raw.Try("common", method, IntPtr.Zero, "key", IntPtr.Zero);
                Assert.True(outcome.Error is ArgumentNullException, method);
            }
        }

        [Test]
        public void NullTextsAreEmptyTexts()
        {
            using (var store = new KVStore())
            {
                IntPtr handle = Raw.Handle(store);
                Assert.Equal("", Raw.CallText("common", "KVStore_getStringAt__SWIG_0", handle, null, null));
                Assert.Equal("", Raw.CallText("common", "KVStore_getWStringAt__SWIG_0", handle, null, null));
            }
        }

        [Test]
        public void ConnectingDelegatesToWhatTakesNoneChangesNothing()
        {
            IntPtr mouse = Raw.CallHandle("input", "new_IInputMediaBufferMouse__SWIG_4", 1, 2, (byte)0);
            IntPtr buffer = Raw.CallHandle("input", "IInputMediaBufferMouse_SWIGSmartPtrUpcast", mouse);
            MethodInfo connect = Function("avstack_base", "IMediaBuffer_director_connect");
            object[] arguments = new object[connect.GetParameters().Length];
            arguments[0] = buffer;
            for (int i = 1; i < arguments.Length; ++i)
                arguments[i] = Answering99(connect.GetParameters()[i].ParameterType);
            Raw.Call("avstack_base", connect.Name, arguments);
            Assert.Equal((byte)10, Raw.Call("avstack_base", "IMediaBuffer_getType", buffer));
            Raw.Call("avstack_base", "delete_IMediaBuffer", buffer);
            Raw.Call("input", "delete_IInputMediaBufferMouse", mouse);
        }

        [Test]
        public void AnEmptyDelegateLeavesTheBaseBehaviour()
        {
            IntPtr buffer = Raw.CallHandle("avstack_base", "new_IMediaBuffer");
            MethodInfo connect = Function("avstack_base", "IMediaBuffer_director_connect");
            object[] arguments = new object[connect.GetParameters().Length];
            arguments[0] = buffer;
            object[] filled = arguments.Select((argument, i) => argument ?? Answering99(connect.GetParameters()[i].ParameterType)).ToArray();
            Raw.Call("avstack_base", connect.Name, filled);
            Assert.Equal((byte)99, Raw.Call("avstack_base", "IMediaBuffer_getType", buffer));
            Raw.Call("avstack_base", connect.Name, arguments);
            Assert.Equal((byte)0, Raw.Call("avstack_base", "IMediaBuffer_getType", buffer));
            GC.KeepAlive(filled);
            Raw.Call("avstack_base", "delete_IMediaBuffer", buffer);
        }

        private static byte Ninetynine()
        {
            return 99;
        }

        // A delegate of the wanted type if it is one for a byte, else none.
        private static Delegate Answering99(Type type)
        {
            MethodInfo answer = typeof(NullTests).GetMethod("Ninetynine", BindingFlags.Static | BindingFlags.NonPublic);
            MethodInfo wanted = type.GetMethod("Invoke");
            bool fits = wanted != null && wanted.ReturnType == typeof(byte) && wanted.GetParameters().Length == 0;
            return fits ? Delegate.CreateDelegate(type, answer) : null;
        }

        private static object FieldValue(string module, string function)
        {
            return Convert.ChangeType(5, Function(module, function).GetParameters()[1].ParameterType);
        }

        private static MethodInfo Function(string module, string name)
        {
            return Raw.FunctionsOf(module).GetMethod(name);
        }

        private static IEnumerable<string> Named(string part)
        {
            return Raw.Modules.SelectMany(Raw.Names).Where(name => name.Contains(part));
        }

        private static void ForEach(Func<string, bool> wanted, Action<string, string> call)
        {
            foreach (string module in Raw.Modules)
                foreach (string name in Raw.Names(module).Where(wanted))
                    call(module, name);
        }
    }
}
