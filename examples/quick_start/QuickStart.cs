using System;
using System.Threading.Tasks;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.common;
using Orbelantine.Swig.input;

/// <summary>A window of 540 by 1170 pixels at the corner of the screen.</summary>
sealed class Window : IInputContext
{
    public override bool getInputSurfaceRectWithinScreen(Rect rect)
    {
        rect.left = 0;
        rect.top = 0;
        rect.right = 540;
        rect.bottom = 1170;
        return true;
    }

    public override bool screenToInputSurface(Point point) { return true; }
    public override bool inputSurfaceToScreen(Point point) { return true; }
    public override int getSystemMouseSpeed() { return DEFAULT_MOUSE_SPEED; }
    public override ushort convertVKCodeToUnicode(uint vk) { return 0; }
    public override uint mapVK(uint index) { return new uint[] { 0x20, 0x11, 0x5B }[index]; }
    public override uint mapScan(uint index) { return new uint[] { 57, 29, 219 }[index]; }
    public override void lockSystemMouse() { }
    public override void unlockSystemMouse(int x, int y) { }
    public override void setCaptureMouseExclusively() { }
    public override void releaseCaptureMouseExclusively() { }
}

static class QuickStart
{
    static int Main(string[] arguments)
    {
        Common.set_log_folder("log");                  // before the first message
        Common.set_log_level(2);                       // info; the default, 6, writes nothing
        using (var settings = new KVStore())
        using (var address = new CMacAddress(arguments[0]))
        using (var phone = new BluetoothPeer(address))
        using (var window = new Window())
        {
            settings.setStringAt("hint", "android");
            using (var client = new HidInputClient(settings))
            {
                client.setInputContext(window);
                string failure = Finish(done => client.connect(phone, done));
                if (failure != null)
                {
                    Console.Error.WriteLine("no phone: " + failure);
                    return 1;
                }
                Finish(client.flush);                                        // the sources listen now
                window.onRotationChanged.call(1);                            // upright
                window.onLogicalDimensionsChanged.call(1080, 2340, 1, 0);    // its screen
                window.onKeyDown.call(0x41, 30, 1);                          // an "a"
                window.onKeyUp.call(0x41, 30);
                window.onMouseClickDown.call(IInputContext.eMouseButton.MouseButtonLeft, 270, 585);
                window.onMouseClickUp.call(IInputContext.eMouseButton.MouseButtonLeft, 270, 585);
                Finish(client.flush);                                        // all of it has gone out
                Finish(client.disconnect);
            }
        }
        return 0;
    }

    // Completions come on the client's own thread, which must not wait.
    static string Finish(Action<ErrorCodeCallback> operation)
    {
        var completed = new TaskCompletionSource<string>(TaskCreationOptions.RunContinuationsAsynchronously);
        using (var done = ErrorCodeCallback.From(code => completed.SetResult(code.value() == 0 ? null : code.message())))
            operation(done);
        return completed.Task.Result;
    }
}
