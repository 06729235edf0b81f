using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    public sealed class InputContextTests : IDisposable
    {
        private readonly FakeSurface main = new FakeSurface();
        private readonly FakeSurface second = new FakeSurface();
        private readonly InputContextComposite composite = new InputContextComposite();

        public InputContextTests()
        {
            composite.setMainInputContext(main);
            composite.addSecondaryContext("second", second);
        }

        public void Dispose()
        {
            composite.Dispose();
            main.Dispose();
            second.Dispose();
        }

        [Test]
        public void QuestionsGoToTheMainSurfaceOfTheHost()
        {
            Assert.Equal((ushort)0x4E41, composite.convertVKCodeToUnicode(0x41));
            Assert.Equal(302u, composite.mapVK(2) + composite.mapScan(0));
            Assert.Equal(7, composite.getSystemMouseSpeed());
            composite.lockSystemMouse();
            composite.unlockSystemMouse();
            composite.unlockSystemMouse(3, 4);
            composite.setCaptureMouseExclusively();
            composite.releaseCaptureMouseExclusively();
            Assert.Sequence(new[] { "lock", "unlock -1,-1", "unlock 3,4", "capture", "release" }, main.Asked);
            Assert.Equal(0, second.Asked.Count);
            Assert.Equal(10, IInputContext.DEFAULT_MOUSE_SPEED);
        }

        [Test]
        public void PointsAndRectsAreChangedInPlace()
        {
            using (var point = new IInputContext.Point { x = 15, y = 30 })
            using (var rect = new IInputContext.Rect())
            {
                Assert.Equal(true, composite.screenToInputSurface(point));
                Assert.Sequence(new[] { 5, 10 }, new[] { point.x, point.y });
                Assert.Equal(false, composite.inputSurfaceToScreen(point));
                Assert.Equal(true, composite.getInputSurfaceRectWithinScreen(rect));
                Assert.Sequence(new[] { 10, 20, 110, 220 }, new[] { rect.left, rect.top, rect.right, rect.bottom });
            }
            Assert.NullArgument("orbelantine::IInputContext::Point & type is null", () => composite.screenToInputSurface(null));
            Assert.NullArgument("orbelantine::IInputContext::Rect & type is null", () => composite.getInputSurfaceRectWithinScreen(null));
        }

        [Test]
        public void EverySignalOfEitherSurfaceReachesTheComposite()
        {
            foreach (PropertyInfo property in Signals())
            {
                Family family = Family.All.Single(each => each.Signal == property.PropertyType);
                var seen = new List<string>();
                var callback = new HostCallback(arguments => { seen.Add(FamilyValues.Seen(arguments)); return false; });
                using (connection slot = family.Connect(property.GetValue(composite, null), callback))
                {
                    foreach (FakeSurface surface in new[] { main, second })
                        using (FamilyValues values = family.NewArguments())
                            family.Invoke(property.GetValue(surface, null), "call", values.Arguments);
                    slot.disconnect();
                }
                Assert.Equal(2, seen.Count, property.Name);
                Assert.Equal(seen[0], seen[1], property.Name);
            }
        }

        [Test]
        public void ASurfaceThatIsRemovedOrReplacedIsHeardNoMore()
        {
            int heard = 0;
            Family family = Family.Of(typeof(VoidCallback));
            family.Connect(composite.onInputSurfaceLostFocus, new HostCallback(() => ++heard)).Dispose();
            composite.removeSecondaryContext("second");
            composite.removeSecondaryContext("second");
            second.onInputSurfaceLostFocus.call();
            composite.setMainInputContext(second);
            main.onInputSurfaceLostFocus.call();
            Assert.Equal(0, heard, "events");
            second.onInputSurfaceLostFocus.call();
            Assert.Equal(1, heard, "events");
            composite.onInputSurfaceLostFocus.disconnect_all_slots();
        }

        [Test]
        public void HostsImplementTheSmallInterfaces()
        {
            using (var window = new FakeWindow())
                Assert.Sequence(new[] { false, true }, new[] { window.getHovered(), window.getFocued() });
            using (var provider = new FakeMouseInfo())
            {
                var heard = new List<string>();
                var onMove = new HostCallback(arguments => { heard.Add(string.Join(",", arguments)); return false; });
                Family.Of(typeof(TwoIntCallback)).Connect(provider.onCursorMove, onMove).Dispose();
                provider.onCursorMove.call(3, 4);
                Assert.Sequence(new[] { "3,4" }, heard);
                provider.onCursorMove.disconnect_all_slots();
                Assert.True(provider.onCursorViewPortChanged.empty() && provider.onLogicalDimensionsChanged.empty(), "slots");
            }
            using (var records = new FakeRecords())
                Assert.Sequence(new[] { 0, 5, 6, 7 }, new[]
                {
                    records.start(), records.stop(), records.addHIDDeviceRecord("a", "b", "c", 64, IntPtr.Zero, 0), records.removeHIDDeviceRecord(),
                });
        }

        private static IEnumerable<PropertyInfo> Signals()
        {
            PropertyInfo[] signals = typeof(IInputContext).GetProperties().Where(property => property.Name.StartsWith("on")).ToArray();
            Assert.Equal(15, signals.Length, "signals");
            return signals;
        }

        private sealed class FakeWindow : IWindowState
        {
            public override bool getHovered() { return false; }
            public override bool getFocued() { return true; }
        }

        private sealed class FakeMouseInfo : IRemoteMouseInfoProvider
        {
            public override void start(ErrorCodeCallback completion) { completion.Dispose(); }
            public override void stop(ErrorCodeCallback completion) { completion.Dispose(); }
        }

        private sealed class FakeRecords : IBluetoothSDPController
        {
            public override int start() { return 0; }
            public override int stop() { return 5; }
            public override int addHIDDeviceRecord(string name, string description, string provider, ushort subclass, IntPtr descriptor, uint size) { return 6; }
            public override int removeHIDDeviceRecord() { return 7; }
        }
    }
}
