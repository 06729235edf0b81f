using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;
using System.Runtime.CompilerServices;
using System.Threading.Tasks;
using Orbelantine.Swig;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>What is used after its end, or the end of what it belongs to.</summary>
    public static class DisposalMistakes
    {
        /// <summary>A class of each kind of handle.</summary>
        public static IEnumerable<string> Kinds() =>
            from type in typeof(NativeObject).Assembly.GetTypes()
                   where type.IsSubclassOf(typeof(NativeObject)) && !type.IsAbstract && !type.IsNestedPrivate && ConstructorOf(type) != null
                   where !type.Name.EndsWith("Callback") || type == typeof(ErrorCodeCallback)
                   where !type.Name.EndsWith("Errors") || type == typeof(HidErrors)
                   select type.FullName;

        [Mistake(For = "Kinds")]
        public static void EachOperationOfADisposedObjectRefuses(string kind)
        {
            Type type = typeof(NativeObject).Assembly.GetType(kind, true);
            ConstructorInfo constructor = ConstructorOf(type);
            var made = (IDisposable)constructor.Invoke(constructor.GetParameters().Select(parameter => Sample(parameter.ParameterType)).ToArray());
            made.Dispose();
            made.Dispose();
            foreach (MethodInfo operation in type.GetMethods(BindingFlags.Instance | BindingFlags.Public).Where(IsForwarded))
            {
                object[] nothing = operation.GetParameters().Select(parameter => Sample(parameter.ParameterType)).ToArray();
                ExpectRefusal(() => operation.Invoke(made, nothing), operation.Name);
            }
        }

        public static void ADisposedArgumentIsRefused()
        {
            var store = new KVStore();
            store.Dispose();
            Assert.Throws<ObjectDisposedException>(() => new HidInputClient(store));
            using (var other = new KVStore())
                Assert.Throws<ObjectDisposedException>(() => other.setKVStoreAt("key", store));
            var surface = new FakeSurface();
            surface.Dispose();
            using (var composite = new InputContextComposite())
                Assert.Throws<ObjectDisposedException>(() => composite.setMainInputContext(surface));
        }

        public static void ASignalKeepsItsOwnerFromTheCollector()
        {
            SignalErrorCodeCallback signal = SignalOfNobody();
            Collector.Run();
            int calls = 0;
            signal.connect(code => ++calls).Dispose();
            using (var code = new error_code())
                signal.call(code);
            Assert.Equal(1, calls);
        }

        public static void APartOfADisposedObjectRefuses()
        {
            var device = new HIDDeviceClient();
            SignalErrorCodeCallback signal = device.onDisconnected;
            device.Dispose();
            Assert.Throws<ObjectDisposedException>(() => signal.num_slots());

            var root = new KVStore();
            KVStore inner = root.getKVStoreAt("a").getKVStoreAt("b");
            ByteVector data = root.getDataAt("data");
            KVStoreMap map = root.getKVStoreMap();
            root.Dispose();
            Assert.Throws<ObjectDisposedException>(() => inner.getIntAt("key"));
            Assert.Throws<ObjectDisposedException>(() => data.Add(1));
            Assert.Throws<ObjectDisposedException>(() => map.Clear());
        }

        public static void ANestedStoreKeepsItsRootFromTheCollector()
        {
            KVStore inner = InnerOfNobody();
            Collector.Run();
            Assert.Equal("a text that is longer than a small one", inner.getStringAt("key"));
        }

        public static void WhatIsShownForACallEndsWithIt()
        {
            var surface = new KeepingSurface();
            using (var composite = new InputContextComposite())
            {
                composite.setMainInputContext(surface);
                using (var point = new IInputContext.Point { x = 5 })
                    composite.screenToInputSurface(point);
            }
            Assert.Throws<ObjectDisposedException>(() => surface.Kept.x.ToString());
        }

        public static void DisposingOnManyThreadsDeletesOnce()
        {
            for (int round = 0; round < 200; ++round)
            {
                var client = new HIDDeviceClient();
                Parallel.For(0, 4, i => client.Dispose());
            }
        }

        private sealed class KeepingSurface : FakeSurface
        {
            public Point Kept { get; private set; }

            public override bool screenToInputSurface(Point point)
            {
                Kept = point;
                return true;
            }
        }

        [MethodImpl(MethodImplOptions.NoInlining)]
        private static SignalErrorCodeCallback SignalOfNobody() => new HIDDeviceClient().onDisconnected;

        [MethodImpl(MethodImplOptions.NoInlining)]
        private static KVStore InnerOfNobody()
        {
            KVStore inner = new KVStore().getKVStoreAt("a").getKVStoreAt("b");
            inner.setStringAt("key", "a text that is longer than a small one");
            return inner;
        }

        private static ConstructorInfo ConstructorOf(Type type) =>
            type.GetConstructors().FirstOrDefault(
                constructor => constructor.GetParameters().All(parameter => CanBeMade(parameter.ParameterType)));

        private static bool CanBeMade(Type type) =>
            type.IsValueType || type == typeof(string) || type == typeof(KVStore) || type == typeof(Action<error_code>) ||
                   type == typeof(ErrorCodeCallbackImpl);

        private static object Sample(Type type) =>
            type.IsValueType ? Activator.CreateInstance(type)
                 : type == typeof(string) ? ""
                 : type == typeof(KVStore) ? new KVStore()
                 : type == typeof(ErrorCodeCallbackImpl) ? new Recorder()
                 : (object)null;

        // What a list tells of itself, and an end that has come, are answers that need no object.
        private static bool IsForwarded(MethodInfo operation) =>
            operation.DeclaringType != typeof(object) && operation.Name != "Dispose" && !operation.Name.StartsWith("get_Is");

        private static void ExpectRefusal(Action action, string operation)
        {
            try
            {
                action();
            }
            catch (TargetInvocationException thrown) when (thrown.InnerException is ObjectDisposedException || thrown.InnerException is ArgumentException)
            {
                return;
            }
            throw new AssertionException(operation + " did not refuse");
        }
    }
}
