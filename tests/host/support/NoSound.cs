namespace Orbelantine.HostTests
{
    /// <summary>A computer that has no sound server, whatever this one has.</summary>
    public static class NoSound
    {
        public static void Set() => VirtualProgram.SetForNativeCode("PULSE_SERVER", "unix:/nonexistent");
    }
}
