// The entry class of streams: bytes move straight between managed code and Python's memory.
using System.Runtime.InteropServices;

namespace Kelmor.WrpGen.Interop;

/// <summary>Entries of Stream.</summary>
public static unsafe class SiApiStream
{
    [UnmanagedCallersOnly]
    internal static byte CanRead(nint self) => Ask(self, static stream => stream.CanRead);

    [UnmanagedCallersOnly]
    internal static byte CanSeek(nint self) => Ask(self, static stream => stream.CanSeek);

    [UnmanagedCallersOnly]
    internal static byte CanWrite(nint self) => Ask(self, static stream => stream.CanWrite);

    [UnmanagedCallersOnly]
    internal static long Length(nint self)
    {
        try
        {
            return Target(self).Length;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static long Position(nint self)
    {
        try
        {
            return Target(self).Position;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static void Close(nint self)
    {
        try
        {
            Target(self).Close();
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static void Flush(nint self)
    {
        try
        {
            Target(self).Flush();
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static int Read(nint self, byte* data, int count)
    {
        try
        {
            return Target(self).Read(new Span<byte>(data, count));
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static long Seek(nint self, long offset, int origin)
    {
        try
        {
            return Target(self).Seek(offset, (SeekOrigin)origin);
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    /// <summary>
    /// Cuts or extends the stream and gives its length: with the flag set, which is a Python
    /// truncate without a size, at the current position.
    /// </summary>
    [UnmanagedCallersOnly]
    internal static long SetLength(nint self, int atPosition, long length)
    {
        try
        {
            Stream stream = Target(self);
            long wanted = atPosition != 0 ? stream.Position : length;
            stream.SetLength(wanted);
            return wanted;
        }
        catch (Exception e)
        {
            return Bridge.Fail(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static void Write(nint self, byte* data, int count)
    {
        try
        {
            Target(self).Write(new ReadOnlySpan<byte>(data, count));
        }
        catch (Exception e)
        {
            Bridge.Raise(e);
        }
    }

    [UnmanagedCallersOnly]
    internal static byte btp_IsAssignable(nint value) => Casts.IsAssignable<Stream>(value);

    [UnmanagedCallersOnly]
    internal static int btp_TypeOf(nint* result) => Casts.TypeOf<Stream>(result);

    [UnmanagedCallersOnly]
    internal static int btp_CastTo(VariantArg* value, nint* result) =>
        Casts.CastTo<Stream>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_ReInterpretObj(nint value, nint* result) =>
        Casts.ReInterpret<Stream>(value, result);

    [UnmanagedCallersOnly]
    internal static int btp_CastAs(nint value, nint* result) => Casts.CastAs<Stream>(value, result);

    private static Stream Target(nint self)
    {
        Bridge.Enter();
        return Handles.Target<Stream>(self);
    }

    private static byte Ask(nint self, Func<Stream, bool> question)
    {
        try
        {
            return question(Target(self)) ? (byte)1 : (byte)0;
        }
        catch (Exception e)
        {
            return Bridge.Raise<byte>(e);
        }
    }
}
