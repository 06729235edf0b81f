using System;
using System.IO;
using System.Text;

namespace Orbelantine.DemoHost
{
    /// <summary>Tells the virtual phone, or the virtual stack, something while a session runs, through the
    /// pipe that it reads. Without a pipe nothing is sent.</summary>
    public sealed class ControlPipe : IDisposable
    {
        private readonly FileStream pipe;

        public ControlPipe(string path)
        {
            if (path != null)
                pipe = new FileStream(path, FileMode.Open, FileAccess.Write, FileShare.ReadWrite, 1);
        }

        public bool IsThere
        {
            get { return pipe != null; }
        }

        public void Send(string line)
        {
            if (pipe == null)
                return;
            byte[] bytes = Encoding.UTF8.GetBytes(line + "\n");
            pipe.Write(bytes, 0, bytes.Length);
            pipe.Flush();
        }

        public void Dispose()
        {
            pipe?.Dispose();
        }
    }
}
