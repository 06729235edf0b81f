using System;
using System.Collections.Generic;
using System.Linq;
using System.Runtime.CompilerServices;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>What holds for every callback family.</summary>
    public sealed class FamilyTests
    {
        private const int FamilyCount = 72;

        public void AFunctionCarriesItsArgumentsToTheHostsObjectAndItsResultBack() =>
            ForEach(family =>
            {
                string seen = null;
                var callback = new HostCallback(arguments => { seen = FamilyValues.Seen(arguments); return true; });
                using (IDisposable function = family.NewFunction(callback))
                using (FamilyValues values = new FamilyValues(family.Parameters))
                {
                    object result = Raw.Invoke(function, "call", values.Arguments);
                    Assert.Equal(ExpectedBy(family), seen, "seen");
                    Assert.Equal(family.HasResult ? (object)true : null, result, "result");
                    Assert.Equal(FunctionsIn(family), values.NestedCalls, "calls of the functions given");
                }
            });

        public void ASignalCarriesItsArgumentsToTheHost() =>
            ForEach(family =>
            {
                var seen = new List<string>();
                object signal = family.NewSignal();
                foreach (bool result in new[] { false, true })
                    family.Connect(signal, new HostCallback(arguments =>
                    {
                        seen.Add(FamilyValues.Seen(arguments));
                        return result;
                    })).Dispose();
                using (FamilyValues values = new FamilyValues(family.Parameters))
                {
                    object result = Raw.Invoke(signal, "call", values.Arguments);
                    Assert.Equal(family.HasResult ? (object)true : null, result, "the last slot's result");
                    Assert.Equal(2 * FunctionsIn(family), values.NestedCalls, "calls of the functions given");
                }
                int calls = FamilyValues.NativeNestedCalls();
                family.FireNatively(signal);
                Assert.Equal(2 * FunctionsIn(family), FamilyValues.NativeNestedCalls() - calls, "calls of native functions");
                Assert.Sequence(Enumerable.Repeat(ExpectedBy(family), 4), seen, "seen");
                ((IDisposable)signal).Dispose();
            });

        public void SlotsRunByGroupAndAreSkippedOnceDisconnected() =>
            ForEach(family =>
            {
                object signal = family.NewSignal();
                var order = new List<string>();
                connection skipped = null;
                Action<string, object[]> connect = (name, group) =>
                    family.Connect(signal, Releasing(() => order.Add(name)), group).Dispose();
                Assert.Equal((object)true, Raw.Invoke(signal, "empty"), "a new signal is empty");
                connect("last", new object[0]);
                skipped = family.Connect(signal, Releasing(() => order.Add("skipped")), 3);
                connect("2", new object[] { 2 });
                family.Connect(signal, Releasing(() => { order.Add("1"); skipped.disconnect(); }), 1).Dispose();
                Assert.Equal((object)4u, Raw.Invoke(signal, "num_slots"));
                family.FireNatively(signal);
                Assert.Sequence(new[] { "1", "2", "last" }, order);
                Assert.True(!skipped.connected(), "still connected");
                Assert.Equal((object)3u, Raw.Invoke(signal, "num_slots"));
                Raw.Invoke(signal, "disconnect_all_slots");
                Assert.Equal((object)true, Raw.Invoke(signal, "empty"), "empty in the end");
                ((IDisposable)signal).Dispose();
            });

        public void TheHostsDelegateLivesAsLongAsNativeCodeHoldsItAndNotLonger() =>
            ForEach(family =>
            {
                object signal = family.NewSignal();
                int calls = 0;
                WeakReference callback = ConnectAndForget(family, signal, () => ++calls);
                Collector.Run();
                family.FireNatively(signal);
                Assert.Equal(1, calls, "calls");
                ((IDisposable)signal).Dispose();
                Collector.Run();
                Assert.True(!callback.IsAlive, "the delegate is still held");
            });

        public void ACopyOfNoFunctionNamesTheSignature() =>
            ForEach(family => Assert.NullArgument(
                "boost::function< " + family.Signature + " > const & type is null",
                () => Raw.Call(family.Module, "new_" + family.Name + "__SWIG_0", IntPtr.Zero)));

        private static void ForEach(Action<Family> test)
        {
            Assert.Equal(FamilyCount, Family.All.Length, "families");
            foreach (Family family in Family.All)
                try
                {
                    test(family);
                }
                catch (AssertionException thrown)
                {
                    throw new AssertionException(family + ": " + thrown.Message);
                }
        }

        private static HostCallback Releasing(Action action) =>
            new HostCallback(arguments => { FamilyValues.Seen(arguments); action(); return false; });

        private static string ExpectedBy(Family family) => FamilyValues.Expected(family.Parameters);

        private static int FunctionsIn(Family family) => ExpectedBy(family).Split(' ', ';').Count(word => word == "function");

        // On a frame of its own, so that nothing of it is left on the stack.
        [MethodImpl(MethodImplOptions.NoInlining)]
        private static WeakReference ConnectAndForget(Family family, object signal, Action action)
        {
            HostCallback callback = Releasing(action);
            family.Connect(signal, callback).Dispose();
            return new WeakReference(callback);
        }
    }
}
