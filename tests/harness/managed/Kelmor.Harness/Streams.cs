// Streams in both directions, and what managed code sees of a Python one.
namespace Kelmor.Harness;

/// <summary>Streams that managed code makes, and streams that it is given.</summary>
public static class Streams
{
    /// <summary>The stream itself, whoever made it.</summary>
    public static Stream? Echo(Stream? stream) => stream;

    /// <summary>A managed stream over a copy of these bytes, at position 0.</summary>
    public static Stream Make(byte[] bytes)
    {
        var stream = new MemoryStream();
        stream.Write(bytes);
        stream.Position = 0;
        return stream;
    }

    /// <summary>A managed stream over these bytes that cannot seek.</summary>
    public static Stream MakeUnseekable(byte[] bytes) => new ForwardStream(bytes);

    /// <summary>All bytes from the present position on.</summary>
    public static byte[] ReadAll(Stream stream)
    {
        var copy = new MemoryStream();
        stream.CopyTo(copy);
        return copy.ToArray();
    }

    /// <summary>At most this many bytes, by one read.</summary>
    public static byte[] ReadSome(Stream stream, int count)
    {
        var bytes = new byte[count];
        return bytes[..stream.Read(bytes, 0, count)];
    }

    /// <summary>The next byte, or -1 at the end.</summary>
    public static int ReadByte(Stream stream) => stream.ReadByte();

    /// <summary>Writes all bytes.</summary>
    public static void Write(Stream stream, byte[] bytes) => stream.Write(bytes, 0, bytes.Length);

    /// <summary>Writes one byte.</summary>
    public static void WriteByte(Stream stream, byte value) => stream.WriteByte(value);

    /// <summary>Moves the position; origin is 0 begin, 1 current, 2 end.</summary>
    public static long Seek(Stream stream, long offset, int origin) =>
        stream.Seek(offset, (SeekOrigin)origin);

    /// <summary>Length in bytes.</summary>
    public static long Length(Stream stream) => stream.Length;

    /// <summary>Position in bytes from the beginning.</summary>
    public static long Position(Stream stream) => stream.Position;

    /// <summary>Sets the length.</summary>
    public static void SetLength(Stream stream, long length) => stream.SetLength(length);

    /// <summary>Flushes.</summary>
    public static void Flush(Stream stream) => stream.Flush();

    /// <summary>Disposes of the stream.</summary>
    public static void Close(Stream stream) => stream.Dispose();

    /// <summary>Whether it can read, seek and write: 1, 2 and 4 added up.</summary>
    public static int Abilities(Stream stream) =>
        (stream.CanRead ? 1 : 0) + (stream.CanSeek ? 2 : 0) + (stream.CanWrite ? 4 : 0);

    private sealed class ForwardStream(byte[] bytes) : MemoryStream(bytes, writable: false)
    {
        public override bool CanSeek => false;

        public override long Seek(long offset, SeekOrigin loc) => throw new NotSupportedException();

        public override int Read(byte[] buffer, int offset, int count) =>
            base.Read(buffer, offset, Math.Min(count, 3));

        public override int Read(Span<byte> buffer) =>
            base.Read(buffer[..Math.Min(buffer.Length, 3)]);
    }
}
