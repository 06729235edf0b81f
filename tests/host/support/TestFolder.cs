using System;
using System.IO;

namespace Orbelantine.HostTests
{
    /// <summary>A temporary folder, gone with this object. Its path is short enough for a socket in it.</summary>
    public sealed class TestFolder : IDisposable
    {
        public TestFolder(string mark = "t")
        {
            Path = System.IO.Path.Combine(System.IO.Path.GetTempPath(),
                                          "orb-" + mark + "-" + Guid.NewGuid().ToString("N").Substring(0, 8));
            Directory.CreateDirectory(Path);
        }

        public string Path { get; }

        public string File(string name) => System.IO.Path.Combine(Path, name);

        public void Dispose() => Directory.Delete(Path, true);
    }
}
