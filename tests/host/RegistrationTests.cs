using System;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using Orbelantine.Swig;
using Orbelantine.Swig.avstack_base;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>What a host registers: exceptions and text, for each module on its own.</summary>
    public sealed class RegistrationTests
    {
        private delegate void ArgumentCallback(string message, string parameter);

        [DllImport("orbelantine")]
        private static extern void SWIGRegisterExceptionArgumentCallbacks_Common(
            ArgumentCallback argument, ArgumentCallback argumentNull, ArgumentCallback outOfRange);

        [DllImport("orbelantine")]
        private static extern void SWIGRegisterStringCallback_AVStackBase(NativeText.Callback callback);

        [DllImport("orbelantine")]
        private static extern void SWIGRegisterWStringCallback_Common(NativeText.Callback callback);

        [Test]
        public void EveryModuleAcceptsItsFourRegistrationsAgain()
        {
            foreach (string module in Raw.Modules)
                Assert.Equal(4, RegisterAgain(module), module);

            using (var store = new KVStore())
                Assert.Equal("text", store.getStringAt("key", "text"));
            Assert.Throws<ArgumentNullException>(() => new KVStore(null));
        }

        [Test]
        public void NarrowTextGoesThroughTheCallbackOfTheModule()
        {
            int calls = 0;
            NativeText.Callback counting = text => { ++calls; return NativeText.Narrow(text); };
            SWIGRegisterStringCallback_AVStackBase(counting);
            try
            {
                using (var element = new IMediaElement())
                    Assert.Equal("", element.getName());
                using (var store = new KVStore())
                    store.getStringAt("of another module");
            }
            finally
            {
                SWIGRegisterStringCallback_AVStackBase(NativeText.Narrow);
            }
            Assert.Equal(1, calls, "calls");
            GC.KeepAlive(counting);
        }

        [Test]
        public void WideTextGoesThroughTheWideCallback()
        {
            int calls = 0;
            NativeText.Callback counting = text => { ++calls; return NativeText.Wide(text); };
            SWIGRegisterWStringCallback_Common(counting);
            try
            {
                using (var store = new KVStore())
                {
                    Assert.Equal("wide", store.getWStringAt("key", "wide"));
                    store.getStringAt("narrow");
                }
            }
            finally
            {
                SWIGRegisterWStringCallback_Common(NativeText.Wide);
            }
            Assert.Equal(1, calls, "calls");
            GC.KeepAlive(counting);
        }

        [Test]
        public void ArgumentErrorsReachTheirEntryOfTheTable()
        {
            string reported = null;
            ArgumentCallback argument = (message, parameter) => reported = Show("argument", message, parameter);
            ArgumentCallback argumentNull = (message, parameter) => reported = Show("null", message, parameter);
            ArgumentCallback outOfRange = (message, parameter) => reported = Show("range", message, parameter);
            SWIGRegisterExceptionArgumentCallbacks_Common(argument, argumentNull, outOfRange);
            try
            {
                IntPtr bytes = Raw.CallHandle("common", "new_ByteVector__SWIG_0");
                Assert.Equal(IntPtr.Zero, Raw.CallHandle("common", "new_error_code__SWIG_2", IntPtr.Zero));
                Assert.Equal("null(boost::system::error_code const & type is null, <null>)", reported);
                Assert.Equal(IntPtr.Zero, Raw.CallHandle("common", "new_ByteVector__SWIG_2", -1));
                Assert.Equal("range(<null>, capacity)", reported);
                Assert.Equal(IntPtr.Zero, Raw.CallHandle("common", "ByteVector_GetRange", bytes, 0, 1));
                Assert.Equal("argument(invalid range, )", reported);
                Raw.Call("common", "delete_ByteVector", bytes);
            }
            finally
            {
                RegisterAgain("common");
            }
            GC.KeepAlive(new[] { argument, argumentNull, outOfRange });
        }

        private static string Show(string kind, string message, string parameter)
        {
            return kind + "(" + (message ?? "<null>") + ", " + (parameter ?? "<null>") + ")";
        }

        // The proxies' own callbacks once more; the number of registrations made.
        private static int RegisterAgain(string module)
        {
            const BindingFlags any = BindingFlags.Static | BindingFlags.Public | BindingFlags.NonPublic;
            int made = 0;
            foreach (Type helper in Raw.FunctionsOf(module).GetNestedTypes(BindingFlags.Public | BindingFlags.NonPublic))
            {
                FieldInfo[] own = helper.GetFields(any).OrderBy(field => field.MetadataToken).ToArray();
                foreach (MethodInfo register in helper.GetMethods(any).Where(method => method.Name.StartsWith("SWIGRegister")))
                {
                    Type wanted = register.GetParameters()[0].ParameterType;
                    object[] callbacks = wanted == typeof(NativeText.Callback)
                        ? new object[] { register.Name.Contains("WString") ? NativeText.Wide : NativeText.Narrow }
                        : own.Where(field => field.FieldType == wanted).Select(field => field.GetValue(null)).ToArray();
                    register.Invoke(null, callbacks);
                    ++made;
                }
            }
            return made;
        }
    }
}
