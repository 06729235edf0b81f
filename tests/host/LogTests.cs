using System.Collections.Generic;
using System.Diagnostics;
using System.IO;
using System.Linq;
using System.Runtime.InteropServices;
using System.Text.RegularExpressions;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    public sealed class LogTests
    {
        [DllImport("orbelantine", EntryPoint = "CSharp_OrbelantinefSwigfcommon_lumiport_log_private_fmt___")]
        private static extern void LogPrivateFormat(uint level, string tag, string format, string argument);

        [Test]
        public void TheFolderComesBackWithASeparatorAtItsEnd()
        {
            Assert.Contains("\U0001F4F1", TestLog.Folder);
            Assert.Equal(TestLog.Folder + Path.DirectorySeparatorChar, Common.get_log_directory());
        }

        [Test]
        public void TheFileIsNamedByPrefixLibraryAndSuffix()
        {
            Assert.Equal("host-lumiport.liborbelantine-tests.log", Common.get_log_name());
            Assert.True(File.Exists(TestLog.FilePath), "no file " + TestLog.FilePath);
        }

        [Test]
        public void TheFirstLineTellsTheProcessAndTheLevel()
        {
            string start = "STARTING INSTANCE pid=" + Process.GetCurrentProcess().Id.ToString("D6") + ", level = 2";
            Assert.True(TestLog.Lines()[0].EndsWith(" | logger | critical]: " + start), TestLog.Lines()[0]);
        }

        [Test]
        public void ATextIsLoggedAsItStands()
        {
            const string text = "100% of %s \U0001F4F1 grün";
            Assert.Sequence(new[] { text }, Messages(() => Common.lumiport_log(TestLog.Info, TestLog.Tag, text)));
        }

        [Test]
        public void AFormatIsAPrintfFormat()
        {
            Assert.Sequence(new[] { "100% of %s" },
                            Messages(() => Common.lumiport_log_fmt(TestLog.Info, TestLog.Tag, "100%% of %%s")));
        }

        [Test]
        public void ALineBelowTheLevelIsNotWritten()
        {
            Assert.Sequence(new[] { "info" }, Messages(() =>
            {
                Common.lumiport_log(1, TestLog.Tag, "debug");
                Common.lumiport_log(TestLog.Info, TestLog.Tag, "info");
            }));
        }

        [Test]
        public void PrivateTextIsRedacted()
        {
            IList<string> lines = TestLog.Record(() =>
            {
                Common.lumiport_log_private(TestLog.Info, TestLog.Tag, "secret");
                Common.lumiport_log_private_fmt(TestLog.Info, TestLog.Tag, "user secret");
                LogPrivateFormat(TestLog.Info, TestLog.Tag, "%s() user secret", "Host::call");
            });
            Assert.Sequence(new[] { "[redacted]", "[redacted]", "Host::call() [redacted]" }, lines.Select(Message));
            Assert.True(lines.All(line => line.Contains(" | ALL__HostTests | ")), lines[0]);
        }

        [Test]
        public void ALevelAboveOffIsOff()
        {
            Common.set_log_level(99);
            Assert.Equal(6u, Common.get_log_level());
        }

        [Test]
        public void AChangeOfTheLevelIsLoggedAndTheSameLevelIsNot()
        {
            Assert.Sequence(new[] { "Changing log level from 2 to 1" }, Messages(() =>
            {
                Common.set_log_level(2);
                Common.set_log_level(1);
                Assert.Equal(1u, Common.get_log_level());
            }));
        }

        [Test]
        public void TheFileAndItsPlaceAreSettledAtTheFirstMessage()
        {
            Common.set_disable_file_log(true);
            Common.set_log_header("kept and never read");
            Common.set_log_directory("/another/folder");
            try
            {
                Assert.Sequence(new[] { "still here" },
                                Messages(() => Common.lumiport_log(TestLog.Info, TestLog.Tag, "still here")));
            }
            finally
            {
                Common.set_disable_file_log(false);
            }
            Assert.Equal(TestLog.Folder + Path.DirectorySeparatorChar, Common.get_log_directory());
        }

        private static IEnumerable<string> Messages(System.Action action)
        {
            return TestLog.Record(action).Select(Message).ToList();
        }

        private static string Message(string line)
        {
            return line.Substring(line.IndexOf("]: ") + 3);
        }
    }
}
