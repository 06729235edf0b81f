using System.Collections.Generic;
using System.IO;
using System.Linq;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>A phone to connect to. While it lives, the library finds its devices and no others.</summary>
    public sealed class VirtualPhone : VirtualProgram
    {
        public const string Address = "00:11:22:33:44:55";

        public VirtualPhone(string options = "")
            : base("ORBELANTINE_TEST_PHONE", folder =>
            {
                SetDevices(folder.Path);
                return "--devices " + folder.Path + " --address " + Address + " --log " + folder.File("log") + " " + options;
            })
        {
        }

        public static BluetoothPeer NewPeer()
        {
            using (var address = new CMacAddress(Address))
                return new BluetoothPeer(address);
        }

        /// <summary>Has the library look for devices in a folder.</summary>
        public static void SetDevices(string path)
        {
            SetForNativeCode("ORBELANTINE_DEVICE_DIR", path);
        }

        public IEnumerable<string> Lines()
        {
            using (var file = new FileStream(Folder.File("log"), FileMode.Open, FileAccess.Read, FileShare.ReadWrite))
                return new StreamReader(file).ReadToEnd().Split('\n').ToList();
        }

        /// <summary>Waits for a line of the phone's log that has all these parts.</summary>
        public void WaitForLine(params string[] parts) =>
            Wait("a line with " + string.Join(" and ", parts),
                 () => Lines().Any(line => parts.All(part => line.Contains(part))));
    }
}
