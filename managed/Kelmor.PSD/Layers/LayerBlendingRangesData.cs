// Which brightnesses of a layer and of what lies below take part in blending.
using System.Buffers.Binary;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

/// <summary>
/// A range of one channel, each end with two values between which blending fades.
/// </summary>
public sealed class BlendRange
{
    internal BlendRange(uint source, uint destination)
    {
        Source = unchecked((int)source);
        Destination = unchecked((int)destination);
    }

    /// <summary>
    /// Range of the layer: black 1, black 2, white 1, white 2, a byte each, the first highest.
    /// </summary>
    public int Source { get; }

    /// <summary>Range of what lies below, in the same form.</summary>
    public int Destination { get; }
}

/// <summary>
/// Blending ranges (Adobe Photoshop File Formats Specification, Layer blending ranges).
/// </summary>
public sealed class LayerBlendingRangesData
{
    private readonly ReadOnlyMemory<byte> data;

    internal LayerBlendingRangesData(ReadOnlyMemory<byte> data) => this.data = data;

    /// <summary>Bytes in the file.</summary>
    public int Length => data.Length;

    /// <summary>The range of all channels together, then one for each channel.</summary>
    public BlendRange[] Ranges
    {
        get
        {
            var ranges = new BlendRange[data.Length / 8];
            for (var i = 0; i < ranges.Length; i++)
            {
                var pair = data.Span[(i * 8)..];
                ranges[i] = new BlendRange(
                    BinaryPrimitives.ReadUInt32BigEndian(pair),
                    BinaryPrimitives.ReadUInt32BigEndian(pair[4..])
                );
            }
            return ranges;
        }
    }
}
