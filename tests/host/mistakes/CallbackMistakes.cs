using System;
using System.Linq;
using System.Reflection;
using Orbelantine.Swig;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>Callbacks and overrides that fail, or are missing.</summary>
    public static class CallbackMistakes
    {
        public static void AnExceptionOfACallbackIsRaisedAndTheNextSlotCalled()
        {
            HostExceptionEventArgs raised = null;
            HostCallbacks.UnhandledException += (sender, told) => raised = told;
            int calls = 0;
            Action<error_code> failing = code => { throw new FormatException("a reason"); };
            Fire(failing, code => ++calls);
            Assert.Equal(1, calls, "calls of the next slot");
            Assert.Equal("a reason", raised.Exception.Message);
            Assert.Equal("call", raised.Operation);
            Assert.Equal((object)failing, raised.Target);
        }

        public static void AnExceptionOfAnOverrideIsRaisedAndAnsweredWithNothing()
        {
            HostExceptionEventArgs raised = null;
            HostCallbacks.UnhandledException += (sender, told) => raised = told;
            using (var surface = new FakeSurface { Failure = new FormatException() })
            {
                Assert.Equal(0, Raw.Call("input", "IInputContext_getSystemMouseSpeed", Raw.Handle<IInputContext>(surface)));
                Assert.Equal("getSystemMouseSpeed", raised.Operation);
                Assert.Equal((object)surface, raised.Target);
            }
        }

        [Mistake(Dies = "System.FormatException: a reason")]
        public static void AnExceptionThatNobodyListensToEndsTheProcessWithItsTrace()
        {
            try
            {
                Fail();
            }
            catch (FormatException)
            {
                // Not what is thrown below native code.
            }
        }

        [Mistake(Dies = "System.InvalidCastException: a second reason")]
        public static void AnExceptionOfTheListenerEndsTheProcess()
        {
            HostCallbacks.UnhandledException += (sender, told) => { throw new InvalidCastException("a second reason"); };
            Fail();
        }

        public static void WhatMustBeOverriddenIsAbstract()
        {
            foreach (Type type in new[] { typeof(IInputContext), typeof(IWindowState), typeof(IRemoteMouseInfoProvider), typeof(IBluetoothSDPController),
                                          typeof(IHIDReportProvider) })
                foreach (MethodInfo operation in type.GetMethods().Where(method => method.IsVirtual && method.DeclaringType == type && !method.IsFinal))
                    Assert.True(operation.IsAbstract || IsShortened(operation), type.Name + "." + operation.Name);
            Assert.True(typeof(IBluetoothService).GetMethod("connect").IsAbstract, "IBluetoothService.connect");
            foreach (Family family in Family.All)
                Assert.True(family.Call.IsAbstract, family.Name);
        }

        public static void NothingToCallIsRefusedByASentence()
        {
            ExpectSentence(() => new ErrorCodeCallback((ErrorCodeCallbackImpl)null));
            ExpectSentence(() => ErrorCodeCallback.From(null));
            using (var device = new HIDDeviceClient())
            {
                ExpectSentence(() => device.onDisconnected.connect((ErrorCodeCallback)null));
                ExpectSentence(() => device.onDisconnected.connect(1, (ErrorCodeCallback)null));
                ExpectSentence(() => device.onDisconnected.connect((Action<error_code>)null));
                Assert.True(device.onDisconnected.empty(), "a slot is connected");
            }
        }

        public static void AQuestionThatNoSlotAnswersIsRefused()
        {
            object signal = Family.Of(typeof(BoolRequestCallback)).NewSignal();
            Assert.Throws<InvalidOperationException>(() => ((SignalBoolRequestCallback)signal).call());
        }

        public static void ASlotMayEndTheOwnerOfItsSignal()
        {
            var device = new HIDDeviceClient();
            int calls = 0;
            device.onDisconnected.connect(code => { ++calls; device.Dispose(); }).Dispose();
            using (var code = new error_code())
                device.onDisconnected.call(code);
            Assert.Equal(1, calls);
        }

        public static void ALibraryOfAnotherVersionIsNamed()
        {
            MethodInfo compare = typeof(NativeObject).Assembly.GetType("Orbelantine.Swig.LibraryVersion").GetMethod("Compare", BindingFlags.Static | BindingFlags.NonPublic);
            Version own = typeof(NativeObject).Assembly.GetName().Version;
            compare.Invoke(null, new object[] { own.ToString(3) });
            var thrown = Assert.Throws<TargetInvocationException>(() => compare.Invoke(null, new object[] { "9.8.7" })).InnerException;
            Assert.True(thrown.Message.Contains("9.8.7") && thrown.Message.Contains(own.ToString(3)), thrown.Message);
        }

        private static void Fail() => Fire(code => { throw new FormatException("a reason"); });

        private static void Fire(params Action<error_code>[] slots)
        {
            using (var device = new HIDDeviceClient())
            using (var sent = new error_code())
            {
                foreach (Action<error_code> slot in slots)
                    device.onDisconnected.connect(slot).Dispose();
                device.onDisconnected.call(sent);
            }
        }

        // A form that leaves arguments out.
        private static bool IsShortened(MethodInfo operation) =>
            operation.DeclaringType.GetMethods().Any(
                method => method.Name == operation.Name && method.IsAbstract && method.GetParameters().Length > operation.GetParameters().Length);

        private static void ExpectSentence(Action action)
        {
            string message = Assert.Throws<ArgumentNullException>(action).Message;
            Assert.True(message.StartsWith("A callback "), message);
        }
    }
}
