using System;
using System.Threading.Tasks;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.PhoneWindow
{
    /// <summary>The connection through which a surface's input goes to the phone.</summary>
    internal sealed class PhoneLink : IDisposable
    {
        private readonly KVStore settings = new KVStore();
        private readonly HidInputClient client;
        private readonly BluetoothPeer phone;

        public PhoneLink(string address, IInputContext surface)
        {
            using (var parsed = new CMacAddress(address))
                phone = new BluetoothPeer(parsed);
            settings.setStringAt("hint", "android");
            client = new HidInputClient(settings);
            client.setInputContext(surface);
        }

        /// <summary>Null once the surface's input arrives, or why it can't.</summary>
        public string Connect()
        {
            return Finish(done => client.connect(phone, done)) ?? Finish(client.flush);
        }

        public void Flush()
        {
            Finish(client.flush);
        }

        /// <summary>Lets go of what is held, after all that was raised has gone out.</summary>
        public void Disconnect()
        {
            Flush();
            Finish(client.disconnect);
        }

        public void Dispose()
        {
            client.Dispose();
            phone.Dispose();
            settings.Dispose();
        }

        private static string Finish(Action<ErrorCodeCallback> operation)
        {
            var completed = new TaskCompletionSource<string>(TaskCreationOptions.RunContinuationsAsynchronously);
            using (ErrorCodeCallback done = ErrorCodeCallback.From(code => completed.SetResult(code.value() == 0 ? null : code.message())))
                operation(done);
            return completed.Task.Result;
        }
    }
}
