// The callbacks that drive file objects.
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop.Tests.Fakes;

/// <summary>A Python file object over a memory stream, with the manners of a raw one.</summary>
internal sealed class FakeFile
{
    public MemoryStream Content { get; } = new();

    /// <summary>The most bytes that one read or write moves.</summary>
    public int Most { get; init; } = int.MaxValue;

    /// <summary>Raised by every operation.</summary>
    public FakeError? Error { get; init; }

    /// <summary>Raised by flush alone.</summary>
    public FakeError? FlushError { get; init; }

    /// <summary>Added to every count that a read or write reports.</summary>
    public int Excess { get; init; }

    public bool Seekable { get; init; } = true;

    public bool Closed { get; set; }

    public int Flushed { get; set; }
}

internal static unsafe partial class FakePython
{
    private static bool Failing(nint pyObject, out FakeFile file)
    {
        file = (FakeFile)Value(pyObject);
        Error = file.Error ?? Error;
        return file.Error is not null;
    }

    [UnmanagedCallersOnly]
    private static int StreamWrite(nint pyObject, void* data, int count)
    {
        if (Failing(pyObject, out FakeFile file))
        {
            return -1;
        }
        int done = Math.Min(count, file.Most);
        file.Content.Write(new ReadOnlySpan<byte>(data, done));
        return done + file.Excess;
    }

    [UnmanagedCallersOnly]
    private static int StreamWriteByte(nint pyObject, int value)
    {
        if (Failing(pyObject, out FakeFile file))
        {
            return -1;
        }
        if (file.Most == 0)
        {
            return 0;
        }
        file.Content.WriteByte((byte)value);
        return 1;
    }

    [UnmanagedCallersOnly]
    private static int StreamRead(nint pyObject, void* data, int count) =>
        Failing(pyObject, out FakeFile file)
            ? -1
            : file.Content.Read(new Span<byte>(data, Math.Min(count, file.Most))) + file.Excess;

    [UnmanagedCallersOnly]
    private static int StreamReadByte(nint pyObject) =>
        Failing(pyObject, out FakeFile file) ? -2 : file.Content.ReadByte();

    [UnmanagedCallersOnly]
    private static long StreamSeek(nint pyObject, long offset, int origin) =>
        Failing(pyObject, out FakeFile file) ? -1 : file.Content.Seek(offset, (SeekOrigin)origin);

    [UnmanagedCallersOnly]
    private static int StreamTruncate(nint pyObject, long length)
    {
        if (Failing(pyObject, out FakeFile file))
        {
            return -1;
        }
        file.Content.SetLength(length);
        return 0;
    }

    [UnmanagedCallersOnly]
    private static int StreamFlush(nint pyObject)
    {
        if (Failing(pyObject, out FakeFile file))
        {
            return -1;
        }
        file.Flushed++;
        return file.FlushError is null ? 0 : Fail(file.FlushError.Type, file.FlushError.Text);
    }

    [UnmanagedCallersOnly]
    private static void StreamClose(nint pyObject) => ((FakeFile)Value(pyObject)).Closed = true;

    [UnmanagedCallersOnly]
    private static int StreamAble(nint pyObject) =>
        Failing(pyObject, out FakeFile file) ? -1 : file.Closed ? 0 : 1;

    [UnmanagedCallersOnly]
    private static int StreamSeekable(nint pyObject) =>
        Failing(pyObject, out FakeFile file) ? -1 : file.Seekable && !file.Closed ? 1 : 0;

    [UnmanagedCallersOnly]
    private static long StreamTell(nint pyObject) =>
        Failing(pyObject, out FakeFile file) ? -1 : file.Content.Position;

    [UnmanagedCallersOnly]
    private static long StreamLength(nint pyObject) => Failing(pyObject, out FakeFile file)
        ? -1
        : file.Closed ? -3 : file.Seekable ? file.Content.Length : -2;
}
