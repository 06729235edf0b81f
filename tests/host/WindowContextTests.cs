using System;
using System.Linq;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    /// <summary>What of a window's context needs no window.</summary>
    public sealed class WindowContextTests : IDisposable
    {
        private readonly WindowsHwndInputContext context = new WindowsHwndInputContext(false, IntPtr.Zero, false);

        public void Dispose() => context.Dispose();

        public void ItNamesItsKeys()
        {
            Assert.Sequence(new uint[] { 32, 32, 91, 0 }, Enumerable.Range(0, 4).Select(i => context.mapVK((uint)i)).ToArray());
            Assert.Sequence(new uint[] { 57, 29, 219, 0 }, Enumerable.Range(0, 4).Select(i => context.mapScan((uint)i)).ToArray());
        }

        public void QuestionsAboutNoWindowAreNotAnswered()
        {
            using (var point = new IInputContext.Point { x = 15, y = 30 })
            using (var rect = new IInputContext.Rect { right = 7 })
            {
                Assert.Equal(false, context.screenToInputSurface(point));
                Assert.Equal(false, context.inputSurfaceToScreen(point));
                Assert.Equal(false, context.getInputSurfaceRectWithinScreen(rect));
                Assert.Sequence(new[] { 15, 30, 7 }, new[] { point.x, point.y, rect.right });
            }
            context.lockSystemMouse();
            context.unlockSystemMouse();
            context.setCaptureMouseExclusively();
            context.releaseCaptureMouseExclusively();
        }

        public void EachPauseOfKeysHasANumberOfItsOwn()
        {
            int first = context.pauseKeyInjection();
            int second = context.pauseKeyInjection();
            context.resumeKeyInjection(first);
            context.resumeKeyInjection(99);
            Assert.Sequence(new[] { 1, 2, 3 }, new[] { first, second, context.pauseKeyInjection() });
        }

        public void TheLastWordOnAKeyCounts()
        {
            context.onPreKeyDown.connect((virtualKey, scanCode, repeatCount) => true).Dispose();
            context.onPreKeyDown.connect((virtualKey, scanCode, repeatCount) => scanCode == 30 && repeatCount == 2).Dispose();
            context.onPreKeyUp.connect((virtualKey, scanCode) => virtualKey == 0x41).Dispose();
            Assert.Equal(true, context.onPreKeyDown.call(0x41, 30, 2));
            Assert.Equal(false, context.onPreKeyDown.call(0x41, 31, 2));
            Assert.Equal(true, context.onPreKeyUp.call(0x41, 30));
        }

        public void ItIsASurfaceAmongOthers()
        {
            using (var composite = new InputContextComposite())
            {
                int lost = 0;
                composite.setMainInputContext(context);
                composite.onInputSurfaceLostFocus.connect(() => ++lost).Dispose();
                context.onInputSurfaceLostFocus.call();
                Assert.Equal(1, lost);
                Assert.Equal(219u, composite.mapScan(2));
            }
        }

        public void WhatIsNoWindowIsRefusedWithASentence()
        {
            string said = Assert.Throws<InvalidOperationException>(
                () => new WindowsHwndInputContext(false, new IntPtr(0x7FFFFFF1), false)).Message;
            Assert.Equal("The window can't be an input surface: ", said.Substring(0, 38));
        }
    }
}
