using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.Threading;
using Orbelantine.Swig.input;

namespace Orbelantine.PhoneWindow
{
    /// <summary>A window whose left button is a finger on the phone. While the finger is down its moves are
    /// paced: after 40 ms without one the phone has forgotten how fast its cursor was, and every move ends
    /// where it should. All events leave in their order, on one thread.</summary>
    internal sealed class PacedSurface : IInputContext
    {
        private const int ApartMs = 45;
        private const uint Finger = 1;

        private readonly WindowsHwndInputContext window;
        private readonly LinkedList<Happening> waiting = new LinkedList<Happening>();
        private readonly Thread pacer;
        private readonly Stopwatch sinceTouch = Stopwatch.StartNew();
        private bool ends;
        // The pacer's.
        private bool isDown;

        private enum Kind { Other, Press, Move, Release }

        private sealed class Happening
        {
            public Kind Kind;
            public Action Raise;
        }

        public PacedSurface(WindowsHwndInputContext window)
        {
            this.window = window;
            pacer = new Thread(Pace) { IsBackground = true };
            pacer.Start();
            window.onMouseClickDown.connect((button, x, y) => Click(button, true, x, y)).Dispose();
            window.onMouseClickUp.connect((button, x, y) => Click(button, false, x, y)).Dispose();
            window.onAbsoluteMouseMove.connect((x, y) => Add(Kind.Move, () => Touch(onPointerUpdate, x, y))).Dispose();
            window.onKeyDown.connect((key, scanCode, repeats) => Add(() => onKeyDown.call(key, scanCode, repeats))).Dispose();
            window.onKeyUp.connect((key, scanCode) => Add(() => onKeyUp.call(key, scanCode))).Dispose();
            window.onRelativeMouseWheel.connect((delta, x, y) => Add(() => onRelativeMouseWheel.call(delta, x, y))).Dispose();
            window.onInputSurfaceLostFocus.connect(() => Add(LoseFocus)).Dispose();
            window.onInputSurfaceDestroyed.connect(() => Add(onInputSurfaceDestroyed.call)).Dispose();
        }

        /// <summary>Returns once what was raised has gone out.</summary>
        public volatile Action Settle;

        /// <summary>Raises what waits, and nothing more.</summary>
        public void End()
        {
            lock (waiting)
            {
                ends = true;
                Monitor.Pulse(waiting);
            }
            pacer.Join();
        }

        public override ushort convertVKCodeToUnicode(uint vk) { return window.convertVKCodeToUnicode(vk); }
        public override uint mapVK(uint index) { return window.mapVK(index); }
        public override uint mapScan(uint index) { return window.mapScan(index); }
        public override int getSystemMouseSpeed() { return window.getSystemMouseSpeed(); }
        public override bool screenToInputSurface(Point point) { return window.screenToInputSurface(point); }
        public override bool inputSurfaceToScreen(Point point) { return window.inputSurfaceToScreen(point); }
        public override bool getInputSurfaceRectWithinScreen(Rect rect) { return window.getInputSurfaceRectWithinScreen(rect); }
        public override void setCaptureMouseExclusively() { window.setCaptureMouseExclusively(); }
        public override void releaseCaptureMouseExclusively() { window.releaseCaptureMouseExclusively(); }

        // A finger is where the cursor is: that stays free, and in sight.
        public override void lockSystemMouse() { }
        public override void unlockSystemMouse(int x, int y) { }

        private void Click(eMouseButton button, bool down, int x, int y)
        {
            if (button == eMouseButton.MouseButtonLeft && down)
                Add(Kind.Press, () => Touch(onPointerDown, x, y));
            else if (button == eMouseButton.MouseButtonLeft)
                Add(Kind.Release, () => Touch(onPointerUp, x, y));
            else if (down)
                Add(() => onMouseClickDown.call(button, x, y));
            else
                Add(() => onMouseClickUp.call(button, x, y));
        }

        private void Add(Action raise)
        {
            Add(Kind.Other, raise);
        }

        private void Add(Kind kind, Action raise)
        {
            lock (waiting)
            {
                // Of moves that wait the newest counts.
                if (kind == Kind.Move && waiting.Last?.Value.Kind == Kind.Move)
                    waiting.Last.Value.Raise = raise;
                else
                    waiting.AddLast(new Happening { Kind = kind, Raise = raise });
                Monitor.Pulse(waiting);
            }
        }

        private void Pace()
        {
            for (Happening next = Next(); next != null; next = Next())
            {
                if (next.Kind == Kind.Press)
                    isDown = true;
                if (isDown || next.Kind == Kind.Other)
                    next.Raise();
                if (next.Kind == Kind.Release)
                    isDown = false;
                if (next.Kind == Kind.Other)
                    continue;
                // The phone counts from when it gets the move.
                Settle?.Invoke();
                sinceTouch.Restart();
            }
        }

        // Null at the end.
        private Happening Next()
        {
            lock (waiting)
            {
                while (waiting.Count == 0 && !ends)
                    Monitor.Wait(waiting);
                for (long wait = Due(); wait > 0; wait = Due())
                    Monitor.Wait(waiting, TimeSpan.FromMilliseconds(wait));
                Happening next = waiting.First?.Value;
                if (next != null)
                    waiting.RemoveFirst();
                return next;
            }
        }

        // In how many milliseconds the first that waits may leave.
        private long Due()
        {
            Kind? kind = waiting.First?.Value.Kind;
            return isDown && (kind == Kind.Move || kind == Kind.Release) ? ApartMs - sinceTouch.ElapsedMilliseconds : 0;
        }

        private void LoseFocus()
        {
            isDown = false;
            onInputSurfaceLostFocus.call();
        }

        private void Touch(SignalPointerEvent signal, int x, int y)
        {
            using (var place = new Point { x = x, y = y })
                if (window.inputSurfaceToScreen(place))
                    signal.call(ePointerType.PointerTouch, Finger, place.x, place.y, true);
        }
    }
}
