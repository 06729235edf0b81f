using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Runtime.InteropServices;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    public sealed class LogTests
    {
        [DllImport("orbelantine", EntryPoint = "CSharp_OrbelantinefSwigfcommon_lumiport_log_private_fmt___")]
        private static extern void LogPrivateFormat(uint level, string tag, string format, string argument);

        public void TheFileIsWhereAndWhatTheHostCallsIt()
        {
            Assert.Equal(TestLog.Folder + Path.DirectorySeparatorChar, Common.get_log_directory());
            Assert.Equal("host-lumiport.liborbelantine-tests.log", Common.get_log_name());
            Assert.True(File.Exists(TestLog.FilePath), "no file " + TestLog.FilePath);
        }

        public void PrivateTextIsRedacted()
        {
            IEnumerable<string> lines = TestLog.Record(() =>
            {
                Common.lumiport_log_private(TestLog.Info, TestLog.Tag, "secret");
                Common.lumiport_log_private_fmt(TestLog.Info, TestLog.Tag, "user secret");
                LogPrivateFormat(TestLog.Info, TestLog.Tag, "%s() user secret", "Host::call");
            });
            Assert.Sequence(new[] { "[redacted]", "[redacted]", "Host::call() [redacted]" }, lines.Select(Message));
        }

        private static string Message(string line) => line.Substring(line.IndexOf("]: ") + 3);
    }
}
