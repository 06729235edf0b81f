using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Text;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>The log of this process: opened before the first test, since its place is settled at the
    /// first message, and silent except while a test records.</summary>
    public sealed class TestLog : IDisposable
    {
        public const string Tag = "HostTests";
        public const uint Info = 2;
        public const uint Off = 6;

        private const string Filler = "~~~~~~~~";
        private static TestFolder folder;

        public TestLog()
        {
            folder = new TestFolder("\U0001F4F1");
            Common.set_log_folder(folder.Path);
            Common.set_log_name_prefix("host-");
            Common.set_log_name_suffix("-tests");
            Common.set_log_level(Info);
            Push();
            Common.set_log_level(Off);
        }

        public static string Folder => folder.Path;

        public static string FilePath => Common.get_log_directory() + Common.get_log_name();

        public void Dispose() => folder.Dispose();

        /// <summary>The lines that an action adds to the log, without line ends.</summary>
        public static IEnumerable<string> Record(Action action)
        {
            Common.set_log_level(Info);
            Push();
            long before = new FileInfo(FilePath).Length;
            try
            {
                action();
                Push();
            }
            finally
            {
                Common.set_log_level(Off);
            }
            using (var file = new FileStream(FilePath, FileMode.Open, FileAccess.Read, FileShare.ReadWrite))
            {
                file.Seek(before, SeekOrigin.Begin);
                string[] lines = new StreamReader(file, Encoding.UTF8).ReadToEnd().Split(new[] { "\r\n" }, StringSplitOptions.None);
                return lines.Where(line => line != "" && !line.Contains(Filler)).ToList();
            }
        }

        // The file is written in blocks: what stands before this message is in the file after it.
        private static void Push() => Common.lumiport_log(5, "filler", new string(Filler[0], 16384));
    }
}
