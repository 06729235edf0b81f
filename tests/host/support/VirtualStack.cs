using System.IO;

namespace Orbelantine.HostTests
{
    /// <summary>A Bluetooth stack, with devices around it, that the library finds in place of the system's.</summary>
    public sealed class VirtualStack : VirtualProgram
    {
        private const string Bus = "DBUS_SYSTEM_BUS_ADDRESS";

        public VirtualStack(params string[] devices)
            : base("ORBELANTINE_TEST_STACK", folder =>
                "--control " + folder.File("control") + " --device " + string.Join(" --device ", devices))
        {
            SetForNativeCode(Bus, File.ReadAllText(Folder.File("ready")).Trim());
        }

        /// <summary>Has the library find no stack at all.</summary>
        public static void SetNone()
        {
            SetForNativeCode(Bus, "unix:path=/nonexistent");
        }

        public void Tell(string line)
        {
            File.WriteAllText(Folder.File("control"), line + "\n");
        }
    }
}
