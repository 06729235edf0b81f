using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.IO;
using System.Linq;
using System.Runtime.InteropServices;
using System.Threading;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>A phone to connect to: a process of the program that ORBELANTINE_TEST_PHONE names. While it
    /// lives, the library finds its devices and no others.</summary>
    public sealed class VirtualPhone : IDisposable
    {
        public const string Address = "00:11:22:33:44:55";

        private const string DevicesVariable = "ORBELANTINE_DEVICE_DIR";
        private const int PatienceMs = 20000;
        private const int Terminate = 15;

        private readonly TestFolder folder = new TestFolder();
        private readonly Process process;

        public VirtualPhone(string options = "")
        {
            string program = Environment.GetEnvironmentVariable("ORBELANTINE_TEST_PHONE");
            if (string.IsNullOrEmpty(program))
                throw new SkippedException("ORBELANTINE_TEST_PHONE names no virtual phone");
            SetDevices(folder.Path);
            string arguments = "--devices " + folder.Path + " --address " + Address + " --log " + folder.File("log") +
                               " --ready-file " + folder.File("ready") + " " + options;
            process = Process.Start(new ProcessStartInfo(program, arguments) { UseShellExecute = false, RedirectStandardOutput = true });
            Wait("the phone to listen", () => File.Exists(folder.File("ready")));
        }

        public static BluetoothPeer NewPeer()
        {
            using (var address = new CMacAddress(Address))
                return new BluetoothPeer(address);
        }

        /// <summary>Has the library look for devices in a folder.</summary>
        public static void SetDevices(string path)
        {
            // Environment.SetEnvironmentVariable is not seen by native code on every runtime.
            setenv(DevicesVariable, path, 1);
        }

        public IEnumerable<string> Lines()
        {
            using (var file = new FileStream(folder.File("log"), FileMode.Open, FileAccess.Read, FileShare.ReadWrite))
                return new StreamReader(file).ReadToEnd().Split('\n').ToList();
        }

        /// <summary>Waits for a line of the phone's log that has all these parts.</summary>
        public void WaitForLine(params string[] parts) =>
            Wait("a line with " + string.Join(" and ", parts),
                 () => Lines().Any(line => parts.All(part => line.Contains(part))));

        /// <summary>Ends at once, as a phone out of reach.</summary>
        public void Vanish()
        {
            process.Kill();
            process.WaitForExit();
        }

        public void Dispose()
        {
            if (!process.HasExited)
                kill(process.Id, Terminate);
            if (!process.WaitForExit(PatienceMs))
                process.Kill();
            process.Dispose();
            folder.Dispose();
        }

        private void Wait(string what, Func<bool> condition)
        {
            Stopwatch waited = Stopwatch.StartNew();
            while (!condition())
            {
                if (waited.ElapsedMilliseconds > PatienceMs)
                    throw new AssertionException("waited in vain for " + what);
                Thread.Sleep(5);
            }
        }

        [DllImport("libc")]
        private static extern int setenv(string name, string value, int overwrite);

        [DllImport("libc")]
        private static extern int kill(int process, int signal);
    }
}
