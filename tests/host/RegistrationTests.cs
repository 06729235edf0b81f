using System;
using System.Runtime.InteropServices;
using Orbelantine.Swig;
using Orbelantine.Swig.avstack_base;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>Text goes through what the host has registered last, for each module on its own.</summary>
    public sealed class RegistrationTests
    {
        [DllImport("orbelantine")]
        private static extern void SWIGRegisterStringCallback_AVStackBase(NativeText.Callback callback);

        [DllImport("orbelantine")]
        private static extern void SWIGRegisterWStringCallback_Common(NativeText.Callback callback);

        public void NarrowTextGoesThroughTheNarrowCallbackOfTheModule() =>
            ExpectOneCall(SWIGRegisterStringCallback_AVStackBase, NativeText.Narrow, store =>
            {
                using (var element = new IMediaElement())
                    Assert.Equal("", element.getName());
                Assert.Equal("", store.getStringAt("of another module"));
            });

        public void WideTextGoesThroughTheWideCallback() =>
            ExpectOneCall(SWIGRegisterWStringCallback_Common, NativeText.Wide, store =>
            {
                Assert.Equal("wide", store.getWStringAt("key", "wide"));
                Assert.Equal("", store.getStringAt("narrow"));
            });

        private static void ExpectOneCall(Action<NativeText.Callback> register, NativeText.Callback proxies, Action<KVStore> action)
        {
            int calls = 0;
            NativeText.Callback counting = text => { ++calls; return proxies(text); };
            register(counting);
            try
            {
                using (var store = new KVStore())
                    action(store);
            }
            finally
            {
                register(proxies);
            }
            Assert.Equal(1, calls, "calls");
            GC.KeepAlive(counting);
        }
    }
}
