// How many bytes the samples of a channel take.
using Kelmor.PSD.CoreExceptions;

namespace Kelmor.PSD.FileFormats.Psd.Channels;

/// <summary>Size of one channel; rows stand one after the other, samples are big-endian.</summary>
/// <param name="Width">Samples of a row.</param>
/// <param name="Height">Rows.</param>
/// <param name="Depth">Bits of a sample: 1, 8, 16 or 32.</param>
internal readonly record struct PlaneLayout(int Width, int Height, int Depth)
{
    /// <summary>Bytes of a row; rows of single bits end at a whole byte.</summary>
    public int RowBytes => checked((int)(((long)Width * Depth + 7) / 8));

    /// <summary>Bytes of the channel.</summary>
    public long Bytes => (long)RowBytes * Height;

    /// <summary>Bytes of the channel, when an array can hold them.</summary>
    /// <exception cref="LimitMemoryException">No array can hold them.</exception>
    public int ArrayLength =>
        Bytes <= Array.MaxLength
            ? (int)Bytes
            : throw new LimitMemoryException(
                $"A channel of {Width} x {Height} samples of {Depth} bits is too large to "
                    + "be decoded at once."
            );
}
