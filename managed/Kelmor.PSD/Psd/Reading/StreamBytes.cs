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
        var buffer = GC.AllocateUninitializedArray<byte>(FirstGuess(stream));
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
                buffer = Longer(buffer);
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
        return buffer[..filled];
    }

    private static int FirstGuess(Stream stream)
    {
        var length = stream.CanSeek ? Math.Max(0, stream.Length - stream.Position) : 1 << 16;
        // The length of a file is no claim of somebody else's code.
        return (int)Math.Min(length, stream is FileStream ? Array.MaxLength : Trusted);
    }

    private static byte[] Longer(byte[] buffer)
    {
        var next = Math.Min(Math.Max(buffer.Length * 2L, 1 << 16), Array.MaxLength);
        if (next <= buffer.Length)
        {
            throw new LimitMemoryException($"The document is larger than {Array.MaxLength} bytes.");
        }
        var longer = GC.AllocateUninitializedArray<byte>((int)next);
        buffer.CopyTo(longer, 0);
        return longer;
    }
}
