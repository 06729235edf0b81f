using System;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

namespace Orbelantine.HostBench
{
    /// <summary>Calls from native code into the host, by what they carry.</summary>
    public static class Callbacks
    {
        private const string Text = "00:11:22:33:44:55";

        private static long calls;

        // Held by Report as long as native code holds them.
        private sealed class OnVoid : VoidCallbackImpl
        {
            public override void pin() { }
            public override bool unpin() { return false; }
            public override void call() { ++calls; }
        }

        private sealed class OnInt : IntCallbackImpl
        {
            public override void pin() { }
            public override bool unpin() { return false; }
            public override void call(int value) { ++calls; }
        }

        private sealed class OnUlong : UlongCallbackImpl
        {
            public override void pin() { }
            public override bool unpin() { return false; }
            public override void call(ulong value) { ++calls; }
        }

        private sealed class OnMouse : MouseEventImpl
        {
            public override void pin() { }
            public override bool unpin() { return false; }
            public override void call(IInputContext.eMouseButton button, int x, int y) { ++calls; }
        }

        private sealed class OnString : StringCallbackImpl
        {
            public override void pin() { }
            public override bool unpin() { return false; }
            public override void call(string text) { ++calls; }
        }

        private sealed class OnWString : WStringCallbackImpl
        {
            public override void pin() { }
            public override bool unpin() { return false; }
            public override void call(string text) { ++calls; }
        }

        private sealed class OnErrorCode : ErrorCodeCallbackImpl
        {
            public override void pin() { }
            public override bool unpin() { return false; }
            public override void call(error_code code) { ++calls; code.Dispose(); }
        }

        private sealed class OnErrorCodeRef : ErrorCodeConstRefCallbackImpl
        {
            public override void pin() { }
            public override bool unpin() { return false; }
            public override void call(error_code code) { ++calls; }
        }

        private sealed class OnBytes : ByteArrayCallbackImpl
        {
            public override void pin() { }
            public override bool unpin() { return false; }
            public override void call(ByteVector bytes) { ++calls; bytes.Dispose(); }
        }

        private sealed class OnMap : StringStringMapCallbackImpl
        {
            public override void pin() { }
            public override bool unpin() { return false; }
            public override void call(MapStringString map) { ++calls; map.Dispose(); }
        }

        private sealed class OnFunction : IntCallbackEventImpl
        {
            public override void pin() { }
            public override bool unpin() { return false; }
            public override void call(IntCallback nested) { ++calls; nested.Dispose(); }
        }

        private sealed class OnPeers : PeerListUpdateCallbackImpl
        {
            public bool Reads;

            public override void pin() { }
            public override bool unpin() { return false; }

            public override void call(bool bluetoothOn, BluetoothPeerVector peers)
            {
                ++calls;
                for (int i = 0; Reads && i < peers.Count; ++i)
                    using (BluetoothPeer peer = peers[i])
                        calls += peer.name().Length;
                peers.Dispose();
            }
        }

        public static void Report(error_code code)
        {
            using (var bytes = new ByteVector(new byte[] { 1, 2, 3, 4, 5, 6, 7, 8, 9 }))
            using (var map = new MapStringString { { "address", Text }, { "name", "phone" } })
            using (var onInt = new OnInt())
            using (var nested = new IntCallback(onInt))
            {
                using (var implementation = new OnVoid())
                using (var function = new VoidCallback(implementation))
                    Report("Void", () => function.call());
                Report("Int", () => nested.call(7));
                using (var implementation = new OnUlong())
                using (var function = new UlongCallback(implementation))
                    Report("Ulong", () => function.call(7));
                using (var implementation = new OnMouse())
                using (var function = new MouseEvent(implementation))
                    Report("Mouse", () => function.call(IInputContext.eMouseButton.MouseButtonLeft, 7, 8));
                using (var implementation = new OnString())
                using (var function = new StringCallback(implementation))
                    Report("String", () => function.call(Text));
                using (var implementation = new OnWString())
                using (var function = new WStringCallback(implementation))
                    Report("WString", () => function.call(Text));
                using (var implementation = new OnErrorCode())
                using (var function = new ErrorCodeCallback(implementation))
                    Report("ErrorCode", () => function.call(code));
                using (var implementation = new OnErrorCodeRef())
                using (var function = new ErrorCodeConstRefCallback(implementation))
                    Report("ErrorCodeRef", () => function.call(code));
                using (var implementation = new OnBytes())
                using (var function = new ByteArrayCallback(implementation))
                    Report("Bytes", () => function.call(bytes));
                using (var implementation = new OnMap())
                using (var function = new StringStringMapCallback(implementation))
                    Report("Map", () => function.call(map));
                using (var implementation = new OnFunction())
                using (var function = new IntCallbackEvent(implementation))
                    Report("Function", () => function.call(nested));
            }
            ReportPeers();
        }

        private static void ReportPeers()
        {
            using (var peers = new BluetoothPeerVector())
            using (var implementation = new OnPeers())
            using (var function = new PeerListUpdateCallback(implementation))
            {
                for (ulong address = 1; address <= 1000; ++address)
                    using (var parsed = new CMacAddress(address))
                    using (var peer = new BluetoothPeer(parsed, "phone", 0x200, false))
                        peers.Add(peer);
                Report("ThousandPeers", () => function.call(true, peers));
                implementation.Reads = true;
                Report("ThousandPeersRead", () => function.call(true, peers));
            }
        }

        private static void Report(string kind, Action call)
        {
            long before = calls;
            Program.Report("HostCallback" + kind, call);
            if (calls == before)
                throw new InvalidOperationException("the callback was not called");
        }
    }
}
