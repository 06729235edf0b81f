using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.Runtime.CompilerServices;
using System.Threading;
using Orbelantine.Swig.common;

/// <summary>CrashHost DEATH: a host that sets the handler and dies.</summary>
internal static class CrashHost
{
    private const int NullReferences = 100000;

    private static CExceptionHandler handler;

    private static readonly Dictionary<string, Action> Deaths = new Dictionary<string, Action>
    {
        { "on_purpose", () => handler.Crash() },
        { "thread", () => { var thread = new Thread(() => handler.Crash()); thread.Start(); thread.Join(); } },
        { "pool", () => { ThreadPool.QueueUserWorkItem(_ => handler.Crash()); Thread.Sleep(Timeout.Infinite); } },
        { "callback", () => ErrorCodeCallback.From(_ => handler.Crash()).call(new error_code()) },
        { "unreferenced", DieUnreferenced },
        { "disposed", () => { handler.Dispose(); NativeCrash(); } },
        { "managed", () => throw new InvalidOperationException("nobody catches this") },
        { "null_references", CatchNullReferences },
    };

    private static int Main(string[] args)
    {
        Action death;
        if (args.Length != 1 || !Deaths.TryGetValue(args[0], out death))
            return 64;
        handler = new CExceptionHandler();
        if (args[0] != "null_references" && !handler.SetHandler())
            return 66;
        death();
        return 0;
    }

    /// <summary>The collector may not take a handler that is set.</summary>
    private static void DieUnreferenced()
    {
        handler.UnsetHandler();
        SetAndForget();
        GC.Collect();
        GC.WaitForPendingFinalizers();
        NativeCrash();
    }

    [MethodImpl(MethodImplOptions.NoInlining)]
    private static void SetAndForget()
    {
        new CExceptionHandler().SetHandler();
    }

    private static void NativeCrash()
    {
        new CExceptionHandler().Crash();
    }

    private sealed class Node
    {
        public int Value;
    }

    private static double CatchSeconds(int count)
    {
        Node nothing = null;
        int caught = 0;
        var watch = Stopwatch.StartNew();
        for (int i = 0; i < count; ++i)
        {
            try
            {
                nothing.Value = i;
            }
            catch (NullReferenceException)
            {
                ++caught;
            }
        }
        if (caught != count)
            throw new InvalidOperationException(caught + " of " + count + " null references were caught");
        return watch.Elapsed.TotalSeconds;
    }

    /// <summary>With and without the handler in turns, and the ratio of the fastest.</summary>
    private static void CatchNullReferences()
    {
        double without = double.MaxValue, with = double.MaxValue;
        CatchSeconds(NullReferences / 10);
        for (int round = 0; round < 10; ++round)
        {
            without = Math.Min(without, CatchSeconds(NullReferences / 10));
            if (!handler.SetHandler())
                Environment.Exit(66);
            with = Math.Min(with, CatchSeconds(NullReferences / 10));
            CatchDivisions();
            handler.UnsetHandler();
        }
        Console.WriteLine("ratio {0:F2}", with / without);
        if (with / without > 1.2)
            Environment.Exit(67);
    }

    private static void CatchDivisions()
    {
        int zero = 0, caught = 0;
        for (int i = 0; i < 100; ++i)
        {
            try
            {
                zero = 1 / zero;
            }
            catch (DivideByZeroException)
            {
                ++caught;
            }
        }
        if (caught != 100)
            Environment.Exit(68);
    }
}
