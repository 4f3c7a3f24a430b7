// The channel of a layer: as stored, decoded when somebody looks, packed when it was changed.
using System.Buffers.Binary;
using Kelmor.PSD.CoreExceptions.ImageFormats;

namespace Kelmor.PSD.FileFormats.Psd.Channels;

internal sealed class ChannelData
{
    private readonly bool storedIsBig; // row lengths of 4 bytes
    private readonly DataRecoveryMode recovery;
    private ReadOnlyMemory<byte> stored; // with the compression field; empty once samples are newer
    private byte[]? plane;

    /// <summary>Data as read from a file.</summary>
    public ChannelData(ReadOnlyMemory<byte> stored, bool isBig, DataRecoveryMode recovery)
    {
        this.stored = stored;
        this.recovery = recovery;
        storedIsBig = isBig;
        Method =
            stored.Length >= 2
                ? (CompressionMethod)BinaryPrimitives.ReadInt16BigEndian(stored.Span)
                : CompressionMethod.Raw;
    }

    /// <summary>New data.</summary>
    public ChannelData(byte[] plane, CompressionMethod method)
    {
        this.plane = plane;
        Method = method;
        IsChanged = true;
    }

    public CompressionMethod Method { get; private set; }

    /// <summary>True when the samples differ from the stored ones.</summary>
    public bool IsChanged { get; private set; }

    public bool IsDecoded => plane is not null;

    /// <summary>The samples, big-endian, row by row; not to be written into.</summary>
    public byte[] Decode(PlaneLayout layout)
    {
        if (plane is null || plane.Length != layout.Bytes)
        {
            plane =
                stored.Length <= 2 && layout.Bytes == 0
                    ? []
                    : ChannelCodec.Unpack(Method, Packed, layout, 1, storedIsBig, recovery)[0];
        }
        return plane;
    }

    /// <summary>Takes new samples.</summary>
    public void Replace(byte[] samples)
    {
        plane = samples;
        stored = default;
        IsChanged = true;
        if (!Enum.IsDefined(Method))
        {
            Method = CompressionMethod.Rle;
        }
    }

    /// <summary>Compression field and packed data, for a document of the given variant.</summary>
    /// <param name="layout">Size of the channel.</param>
    /// <param name="isBig">True: row lengths of 4 bytes.</param>
    /// <param name="wanted">Another method, or null to keep the present one.</param>
    public ReadOnlyMemory<byte> Store(PlaneLayout layout, bool isBig, CompressionMethod? wanted)
    {
        var method = wanted ?? Method;
        if (!stored.IsEmpty && method == Method)
        {
            if (storedIsBig == isBig || method != CompressionMethod.Rle || stored.Length <= 2)
            {
                return stored;
            }
            if (
                ChannelCodec.ChangeRowLengths(Packed.Span, layout.Height, storedIsBig) is
                { } changed
            )
            {
                return WithMethod(method, changed);
            }
        }
        if (stored.Length < 2 && plane is null)
        {
            return stored;
        }
        return WithMethod(method, ChannelCodec.Pack(method, [Decode(layout)], layout, isBig));
    }

    /// <summary>A copy that changes on its own; the stored bytes are shared.</summary>
    public ChannelData Copy() =>
        plane is not null && IsChanged
            ? new ChannelData((byte[])plane.Clone(), Method)
            : new ChannelData(stored, storedIsBig, recovery);

    private ReadOnlyMemory<byte> Packed =>
        stored.Length >= 2
            ? stored[2..]
            : throw new PsdImageException(
                "The channel data are damaged: the compression method is missing."
            );

    private static byte[] WithMethod(CompressionMethod method, ReadOnlySpan<byte> packed)
    {
        var whole = new byte[packed.Length + 2];
        BinaryPrimitives.WriteInt16BigEndian(whole, (short)method);
        packed.CopyTo(whole.AsSpan(2));
        return whole;
    }
}
