// Figures that tests look at: nothing of the bridge depends on them.
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop;

/// <summary>Live handles and late releases, read and set in motion by tests.</summary>
public static class Diagnostics
{
    [UnmanagedCallersOnly]
    private static long LiveHandles() => Handles.Live;

    [UnmanagedCallersOnly]
    private static int QueueLength() => PyReleases.Count;

    /// <summary>Collects garbage, runs the finalisers and gives back what they let go.</summary>
    [UnmanagedCallersOnly]
    private static void Collect()
    {
        try
        {
            // Twice: an adapter may be reachable only from another object with a finaliser.
            for (int i = 0; i < 2; i++)
            {
                GC.Collect();
                GC.WaitForPendingFinalizers();
            }
            Bridge.Enter();
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }
}
