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
        public const string Prefix = "host-";
        public const string Suffix = "-tests";
        public const uint Info = 2;
        public const uint Off = 6;

        private const string Filler = "~~~~~~~~";
        private static TestFolder folder;

        public TestLog()
        {
            folder = new TestFolder("\U0001F4F1");
            Common.set_log_folder(folder.Path);
            Common.set_log_name_prefix(Prefix);
            Common.set_log_name_suffix(Suffix);
            Common.set_log_level(Info);
            Common.lumiport_log(Info, Tag, "first message");
            Push();
            Common.set_log_level(Off);
        }

        public static string Folder
        {
            get { return folder.Path; }
        }

        public static string FilePath
        {
            get { return Common.get_log_directory() + Common.get_log_name(); }
        }

        public void Dispose()
        {
            folder.Dispose();
        }

        /// <summary>The lines that an action adds to the log at a level.</summary>
        public static IList<string> Record(Action action, uint level = Info)
        {
            Common.set_log_level(level);
            Push();
            long before = new FileInfo(FilePath).Length;
            try
            {
                action();
                Push();
                return Lines(before);
            }
            finally
            {
                Common.set_log_enable_private(false);
                Common.set_log_level(Off);
            }
        }

        /// <summary>The log's lines from a place in the file on, without line ends.</summary>
        public static IList<string> Lines(long from = 0)
        {
            using (var file = new FileStream(FilePath, FileMode.Open, FileAccess.Read, FileShare.ReadWrite))
            {
                file.Seek(from, SeekOrigin.Begin);
                string text = new StreamReader(file, Encoding.UTF8).ReadToEnd();
                string[] lines = text.Split(new[] { "\r\n" }, StringSplitOptions.None);
                return lines.Where(line => line != "" && !line.Contains(Filler)).ToList();
            }
        }

        // The file is written in blocks: what stands before this message is in the file after it.
        private static void Push()
        {
            Common.lumiport_log(5, "filler", new string(Filler[0], 16384));
        }
    }
}
