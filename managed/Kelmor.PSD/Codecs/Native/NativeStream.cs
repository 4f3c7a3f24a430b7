// Lends a managed stream to native codecs for the length of a call.
using System.Runtime.CompilerServices;
using System.Runtime.ExceptionServices;
using System.Runtime.InteropServices;

namespace Kelmor.PSD.Codecs.Native;

/// <summary>The table of callbacks that native codecs write through.</summary>
/// <remarks>Callbacks come on the thread of the call; an exception is kept here while the native
/// frames return.</remarks>
internal sealed unsafe class NativeStream : IDisposable
{
    private readonly Stream stream;
    private GCHandle self;
    private ExceptionDispatchInfo? failure;

    public NativeStream(Stream stream)
    {
        this.stream = stream;
        self = GCHandle.Alloc(this);
        Table = new StreamTable { Write = &Write, User = (void*)GCHandle.ToIntPtr(self) };
    }

    /// <summary>What the native side is given.</summary>
    public StreamTable Table { get; }

    /// <summary>Throws what a callback has kept.</summary>
    public void ThrowFailure() => failure?.Throw();

    public void Dispose()
    {
        if (self.IsAllocated)
        {
            self.Free();
        }
    }

    [UnmanagedCallersOnly]
    private static long Write(void* user, byte* block, long length)
    {
        var target = Unsafe.As<NativeStream>(GCHandle.FromIntPtr((nint)user).Target!);
        if (target.failure is not null)
        {
            return -1;
        }
        try
        {
            target.stream.Write(new ReadOnlySpan<byte>(block, checked((int)length)));
            return length;
        }
        catch (Exception exception)
        {
            target.failure = ExceptionDispatchInfo.Capture(exception);
            return -1;
        }
    }

    /// <summary>The record `kelmor_stream`; unused callbacks are null.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct StreamTable
    {
        public delegate* unmanaged<void*, byte*, long, long> Read;
        public delegate* unmanaged<void*, byte*, long, long> Write;
        public delegate* unmanaged<void*, long, int, long> Seek;
        public delegate* unmanaged<void*, long> Size;
        public void* User;
    }
}
