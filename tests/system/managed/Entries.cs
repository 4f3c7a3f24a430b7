// Entry points by which tests look at a runtime that the wrap library has started.
using System.Globalization;
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;
using System.Text;

namespace Start;

public static unsafe class Entries
{
    private static int s_finalized;

    [UnmanagedCallersOnly]
    public static int Add(int left, int right) => left + right;

    public static int Overloaded(int value) => value;

    public static int Overloaded(string value) => value.Length;

    /// <summary>1 when a hardware fault has become an exception.</summary>
    [UnmanagedCallersOnly]
    public static int CatchNullReference()
    {
        try
        {
            return Length(null!);
        }
        catch (NullReferenceException)
        {
            return 1;
        }
    }

    /// <summary>1 when a hardware fault on the finaliser's thread has become one too.</summary>
    [UnmanagedCallersOnly]
    public static int CatchNullReferenceInFinalizer()
    {
        Drop();
        for (int attempt = 0; attempt < 50 && s_finalized == 0; attempt++)
        {
            GC.Collect();
            GC.WaitForPendingFinalizers();
        }
        return s_finalized;
    }

    /// <summary>1 when a collection could stop a thread that runs a loop without any call.</summary>
    [UnmanagedCallersOnly]
    public static int CollectBesideBusyThread()
    {
        var busy = new Busy();
        var thread = new Thread(busy.Run) { IsBackground = true };
        thread.Start();
        while (!Volatile.Read(ref busy.Started))
        {
            Thread.Yield();
        }
        GC.Collect();
        Volatile.Write(ref busy.Stop, true);
        return 1;
    }

    /// <summary>Works for so long without a return to the caller.</summary>
    [UnmanagedCallersOnly]
    public static void Spin(int milliseconds)
    {
        long end = Environment.TickCount64 + milliseconds;
        while (Environment.TickCount64 < end)
        {
        }
    }

    [UnmanagedCallersOnly]
    public static int BaseDirectory(byte* text, int size) => Write(AppContext.BaseDirectory, text, size);

    [UnmanagedCallersOnly]
    public static int Location(byte* text, int size) => Write(typeof(Entries).Assembly.Location, text, size);

    /// <summary>A text of a named culture, or the kind of the exception.</summary>
    [UnmanagedCallersOnly]
    public static int GermanNumber(byte* text, int size)
    {
        try
        {
            return Write(1.5.ToString(CultureInfo.GetCultureInfo("de-DE")), text, size);
        }
        catch (Exception e)
        {
            return Write(e.GetType().Name, text, size);
        }
    }

    private static int Write(string value, byte* text, int size) =>
        Encoding.UTF8.GetBytes(value, new Span<byte>(text, size));

    [MethodImpl(MethodImplOptions.NoInlining)]
    private static int Length(string text) => text.Length;

    [MethodImpl(MethodImplOptions.NoInlining)]
    private static void Drop() => _ = new Faulty();

    private sealed class Faulty
    {
        ~Faulty()
        {
            try
            {
                s_finalized = Length(null!);
            }
            catch (NullReferenceException)
            {
                s_finalized = 1;
            }
        }
    }

    private sealed class Busy
    {
        public bool Started;
        public bool Stop;

        public void Run()
        {
            Volatile.Write(ref Started, true);
            while (!Volatile.Read(ref Stop))
            {
            }
        }
    }
}
