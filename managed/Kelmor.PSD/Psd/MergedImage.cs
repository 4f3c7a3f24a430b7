// The merged picture at the end of a document (Photoshop File Formats, Image Data Section).
using System.Buffers.Binary;
using Kelmor.PSD.CoreExceptions.ImageFormats;
using Kelmor.PSD.FileFormats.Psd.Channels;

namespace Kelmor.PSD.FileFormats.Psd;

/// <summary>All channels of the merged picture: as stored, decoded when somebody looks.</summary>
internal sealed class MergedImage
{
    private readonly PsdHeader header;
    private readonly DataRecoveryMode recovery;
    private ReadOnlyMemory<byte> stored; // to the end of the file; empty once the samples are newer
    private byte[][]? planes;

    /// <summary>A picture as read from a file.</summary>
    public MergedImage(ReadOnlyMemory<byte> stored, PsdHeader header, DataRecoveryMode recovery)
    {
        this.stored = stored;
        this.header = header;
        this.recovery = recovery;
        Method =
            stored.Length >= 2
                ? (CompressionMethod)BinaryPrimitives.ReadInt16BigEndian(stored.Span)
                : CompressionMethod.Raw;
    }

    /// <summary>A new picture, without samples until it is given some.</summary>
    public MergedImage(PsdHeader header, CompressionMethod method)
    {
        this.header = header;
        Method = method;
    }

    public CompressionMethod Method { get; }

    /// <summary>True when nothing is left to be decoded.</summary>
    public bool IsDecoded => planes is not null || stored.IsEmpty;

    /// <summary>True when the document has picture data at all.</summary>
    public bool IsPresent => planes is not null || stored.Length >= 2;

    public PlaneLayout Layout => new(header.Width, header.Height, header.Depth);

    /// <summary>
    /// The samples of each channel, big-endian, row by row; not to be written into.
    /// </summary>
    /// <exception cref="PsdImageException">The data are damaged or missing.</exception>
    public byte[][] Decode()
    {
        if (planes is null)
        {
            if (stored.Length < 2)
            {
                throw new PsdImageException("The document holds no merged image.");
            }
            planes = ChannelCodec.Unpack(
                Method,
                stored[2..],
                Layout,
                header.Channels,
                header.IsBig,
                recovery
            );
        }
        return planes;
    }

    /// <summary>Takes new samples.</summary>
    public void Replace(byte[][] samples)
    {
        planes = samples;
        stored = default;
    }

    /// <summary>Compression field and packed data, for a document of the given variant.</summary>
    public ReadOnlyMemory<byte> Store(bool isBig, CompressionMethod? wanted)
    {
        var method = wanted ?? Method;
        if (!stored.IsEmpty && (method == Method || stored.Length < 2))
        {
            if (header.IsBig == isBig || method != CompressionMethod.Rle || stored.Length < 2)
            {
                return stored;
            }
            if (
                ChannelCodec.ChangeRowLengths(
                    stored.Span[2..],
                    header.Height * header.Channels,
                    header.IsBig
                ) is
                { } changed
            )
            {
                return WithMethod(method, changed);
            }
        }
        if (stored.IsEmpty && planes is null)
        {
            return stored;
        }
        return WithMethod(method, ChannelCodec.Pack(method, Decode(), Layout, isBig));
    }

    private static byte[] WithMethod(CompressionMethod method, ReadOnlySpan<byte> packed)
    {
        var whole = new byte[packed.Length + 2];
        BinaryPrimitives.WriteInt16BigEndian(whole, (short)method);
        packed.CopyTo(whole.AsSpan(2));
        return whole;
    }
}
