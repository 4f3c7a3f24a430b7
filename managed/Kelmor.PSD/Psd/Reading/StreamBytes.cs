// Takes the rest of a stream into memory; what a stream says about its length is a hint at most.
using Kelmor.PSD.CoreExceptions;

namespace Kelmor.PSD.FileFormats.Psd.Reading;

internal static class StreamBytes
{
    // A stream that claims to be longer than this must first deliver so much before more is set
    // aside.
    private const int Trusted = 64 << 20;

    /// <summary>
    /// All bytes from the present position to the end; short reads are gone on with.
    /// </summary>
    /// <exception cref="LimitMemoryException">The document does not fit into one block of
    /// memory.</exception>
    public static byte[] ReadToEnd(Stream stream)
    {
        var buffer = new byte[FirstGuess(stream)];
        var filled = 0;
        while (true)
        {
            if (filled == buffer.Length)
            {
                var next = stream.ReadByte();
                if (next < 0)
                {
                    return buffer;
                }
                Array.Resize(ref buffer, Grown(buffer.Length));
                buffer[filled++] = (byte)next;
            }
            var count = stream.Read(buffer, filled, buffer.Length - filled);
            if (count < 0 || count > buffer.Length - filled)
            {
                throw new StreamReadException(
                    $"The stream answered {count} to a read of {buffer.Length - filled} bytes."
                );
            }
            if (count == 0)
            {
                break;
            }
            filled += count;
        }
        Array.Resize(ref buffer, filled);
        return buffer;
    }

    private static int FirstGuess(Stream stream)
    {
        var length = stream.CanSeek ? Math.Max(0, stream.Length - stream.Position) : 1 << 16;
        return (int)Math.Min(length, Trusted);
    }

    private static int Grown(int length)
    {
        var next = Math.Min(Math.Max(length * 2L, 1 << 16), Array.MaxLength);
        return next > length
            ? (int)next
            : throw new LimitMemoryException(
                $"The document is larger than {Array.MaxLength} bytes."
            );
    }
}
