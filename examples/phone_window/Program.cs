using System;
using System.IO;
using System.Threading;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.PhoneWindow
{
    /// <summary>Opens a window over a virtual phone: what is done in it happens on the phone. It ends when it
    /// is closed, at Ctrl-C and at the end of standard input.</summary>
    internal static class Program
    {
        private const int FrameMs = 15;
        private const int Upright = 1;
        private const double Unscaled = 1;
        private const int NoDisplay = 2;
        private const int NoPhone = 3;

        private static int Main(string[] arguments)
        {
            if (arguments.Length != 5 || !uint.TryParse(arguments[3], out uint width) || !uint.TryParse(arguments[4], out uint height))
            {
                Console.Error.WriteLine("usage: PhoneWindow ADDRESS PHONE_LOG LOG_FOLDER WIDTH HEIGHT");
                return NoDisplay;
            }
            Common.set_log_folder(arguments[2]);
            Common.set_log_level(2);
            try
            {
                using (var screen = new PhoneScreen(arguments[1]))
                using (var window = new Window(screen, width, height))
                    return Run(arguments[0], screen, window);
            }
            catch (Exception failure) when (failure is IOException || failure is InvalidOperationException || failure is DllNotFoundException)
            {
                Console.Error.WriteLine("PhoneWindow: " + failure.Message);
                return NoDisplay;
            }
        }

        private static int Run(string address, PhoneScreen screen, Window window)
        {
            using (var context = new WindowsHwndInputContext(false, window.Canvas, false))
            using (var surface = new PacedSurface(context))
            using (var link = new PhoneLink(address, surface))
            {
                string failure = link.Connect();
                if (failure != null)
                {
                    Console.Error.WriteLine("PhoneWindow: no phone at " + address + ": " + failure);
                    return NoPhone;
                }
                surface.Settle = link.Flush;
                surface.onRotationChanged.call(Upright);
                surface.onLogicalDimensionsChanged.call(screen.Width, screen.Height, Unscaled, 0);
                Console.WriteLine("canvas " + window.Canvas);
                Show(window);
                surface.End();
                link.Disconnect();
                return 0;
            }
        }

        private static void Show(Window window)
        {
            using (var end = new ManualResetEvent(false))
            {
                ConsoleCancelEventHandler interrupted = (sender, pressed) =>
                {
                    pressed.Cancel = true;
                    end.Set();
                };
                Console.CancelKeyPress += interrupted;
                new Thread(() =>
                {
                    Console.In.ReadToEnd();
                    end.Set();
                }) { IsBackground = true }.Start();
                while (!end.WaitOne(FrameMs) && window.Update()) { }
                Console.CancelKeyPress -= interrupted;
            }
        }
    }
}
