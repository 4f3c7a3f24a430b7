// One channel of a layer.
using Kelmor.PSD.FileFormats.Psd.Channels;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

/// <summary>A channel of a layer: which it is, and how its data are stored.</summary>
public sealed class ChannelInformation
{
    internal ChannelInformation(short id) => ChannelID = id;

    /// <summary>
    /// 0 and up: colour channels; -1 transparency, -2 user mask, -3 user mask beside a vector mask.
    /// </summary>
    public short ChannelID { get; }

    /// <summary>How the data are packed.</summary>
    public CompressionMethod CompressionMethod => Data.Method;

    /// <summary>
    /// Bytes that the data took in the file, the compression field included; 0 for new ones.
    /// </summary>
    public long Length => (long)StoredLength;

    internal ulong StoredLength { get; init; }

    internal ChannelData Data { get; set; } = new([], CompressionMethod.Raw);

    internal ChannelInformation Copy() =>
        new(ChannelID) { StoredLength = StoredLength, Data = Data.Copy() };
}

/// <summary>Numbers of the channels that carry no colour.</summary>
internal static class ChannelIds
{
    public const short Transparency = -1;
    public const short UserMask = -2;
    public const short RealUserMask = -3;
}
