// The root of everything that holds resources and is ended once.
namespace Kelmor.PSD;

/// <summary>
/// An object that is ended by <see cref="Dispose()"/>; afterwards its work raises an exception.
/// </summary>
public abstract class DisposableObject : IDisposable
{
    /// <summary>True after the object was disposed of.</summary>
    public bool Disposed { get; private set; }

    /// <summary>Releases what the object holds. A second call does nothing.</summary>
    public void Dispose()
    {
        if (!Disposed)
        {
            Disposed = true;
            ReleaseManagedResources();
            GC.SuppressFinalize(this);
        }
    }

    /// <summary>Lets go of what this object owns; called once.</summary>
    protected virtual void ReleaseManagedResources() { }

    /// <summary>Refuses work after the end.</summary>
    /// <exception cref="ObjectDisposedException">The object was disposed of.</exception>
    protected void VerifyNotDisposed() => ObjectDisposedException.ThrowIf(Disposed, this);
}
