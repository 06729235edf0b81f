using System;
using Orbelantine.Swig.input;

namespace Orbelantine.HostTests
{
    public sealed class InputContextTests : IDisposable
    {
        private readonly FakeSurface main = new FakeSurface();
        private readonly InputContextComposite composite = new InputContextComposite();

        public InputContextTests() => composite.setMainInputContext(main);

        public void Dispose()
        {
            composite.Dispose();
            main.Dispose();
        }

        private sealed class HostWindow : IWindowState
        {
            public override bool getHovered() => false;
            public override bool getFocued() => true;
        }

        public void QuestionsGoToTheMainSurfaceOfTheHost()
        {
            Assert.Equal((ushort)0x4E41, composite.convertVKCodeToUnicode(0x41));
            Assert.Equal(102u, composite.mapVK(2));
            Assert.Equal(7, composite.getSystemMouseSpeed());
            composite.lockSystemMouse();
            composite.unlockSystemMouse();
            composite.unlockSystemMouse(3, 4);
            Assert.Sequence(new[] { "lock", "unlock -1,-1", "unlock 3,4" }, main.Asked);
            Assert.Equal(10, IInputContext.DEFAULT_MOUSE_SPEED);
        }

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
        }

        public void ASurfaceIsHeardUntilItIsRemoved()
        {
            int heard = 0;
            composite.onInputSurfaceLostFocus.connect(() => ++heard).Dispose();
            main.onInputSurfaceLostFocus.call();
            composite.setMainInputContext(null);
            composite.addSecondaryContext("second", main);
            main.onInputSurfaceLostFocus.call();
            composite.removeSecondaryContext("second");
            main.onInputSurfaceLostFocus.call();
            Assert.Equal(2, heard);
        }

        public void NativeCodeAsksAWindowOfTheHost()
        {
            using (var window = new HostWindow())
            {
                IntPtr handle = Raw.Handle<IWindowState>(window);
                Assert.Equal((object)false, Raw.Call("input", "IWindowState_getHovered", handle));
                Assert.Equal((object)true, Raw.Call("input", "IWindowState_getFocued", handle));
            }
        }
    }
}
