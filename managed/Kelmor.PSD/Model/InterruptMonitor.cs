// Tells a long operation from outside that it is not wanted any more.
namespace Kelmor.PSD.MultiThreading;

/// <summary>A wish to stop, which long operations look at.</summary>
public class InterruptMonitor
{
    [ThreadStatic]
    private static InterruptMonitor? threadLocalInstance;

    private volatile bool interrupted;

    /// <summary>True once somebody asked to stop.</summary>
    public virtual bool IsInterrupted => interrupted;

    /// <summary>
    /// The monitor that the operations of this thread look at when their image has none.
    /// </summary>
    public static InterruptMonitor? ThreadLocalInstance
    {
        get => threadLocalInstance;
        set => threadLocalInstance = value;
    }

    /// <summary>Asks the operations that look at this monitor to stop.</summary>
    public virtual void Interrupt() => interrupted = true;
}
