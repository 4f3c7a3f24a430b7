// What a layer record holds, field by field, with the bytes that it was read from.
using Kelmor.PSD.FileFormats.Psd.Channels;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

/// <summary>A layer record (Adobe Photoshop File Formats Specification, Layer Records).</summary>
internal sealed class LayerRecord
{
    public const int LargestSide = 300_000;

    /// <summary>The record as read; written again while nothing in it has changed.</summary>
    public ReadOnlyMemory<byte> Raw { get; set; }

    public int Top { get; set; }

    public int Left { get; set; }

    public int Bottom { get; set; }

    public int Right { get; set; }

    public List<ChannelInformation> Channels { get; } = [];

    public uint Signature { get; set; } = TaggedBlocks.Signature;

    public int BlendMode { get; set; } = (int)Core.Blending.BlendMode.Normal;

    public byte Opacity { get; set; } = 255;

    public byte Clipping { get; set; }

    public byte Flags { get; set; } = HasUsefulFlags;

    public byte Filler { get; set; }

    /// <summary>Layer mask data without their length.</summary>
    public ReadOnlyMemory<byte> Mask { get; set; }

    /// <summary>Blending ranges without their length.</summary>
    public ReadOnlyMemory<byte> BlendingRanges { get; set; }

    /// <summary>Name in the old form: length byte, characters, padding to 4 bytes.</summary>
    public ReadOnlyMemory<byte> PascalName { get; set; } = new byte[4];

    public List<LayerResource> Blocks { get; } = [];

    /// <summary>Bytes at the end that form no block.</summary>
    public ReadOnlyMemory<byte> Rest { get; set; }

    /// <summary>True when a field differs from the bytes as read.</summary>
    public bool IsChanged { get; set; }

    // Bit 3 says that bit 4 means something (Photoshop 5 and later).
    private const byte HasUsefulFlags = 8;

    public int Width => Right - Left;

    public int Height => Bottom - Top;

    /// <summary>The first block with a key, or null.</summary>
    public LayerResource? Find(uint key) => Blocks.Find(block => block.KeyCode == key);

    /// <summary>True when there is a block with one of these keys.</summary>
    public bool Has(params ReadOnlySpan<string> keys)
    {
        foreach (var key in keys)
        {
            if (Find(TaggedBlocks.Code(key)) is not null)
            {
                return true;
            }
        }
        return false;
    }

    /// <summary>Size of a channel: masks have rectangles of their own.</summary>
    public PlaneLayout LayoutOf(short channel, int depth)
    {
        if (channel is ChannelIds.UserMask or ChannelIds.RealUserMask)
        {
            var area = MaskRectangles.Of(Mask, channel == ChannelIds.RealUserMask);
            return new PlaneLayout(area.Width, area.Height, depth);
        }
        return new PlaneLayout(Width, Height, depth);
    }

    /// <summary>
    /// Lets go of the bytes as read, so that the record and its blocks are written anew.
    /// </summary>
    public void ForgetRaw()
    {
        IsChanged = true;
        Blocks.ForEach(block => block.Raw = default);
    }

    /// <summary>A copy that changes on its own.</summary>
    public LayerRecord Copy()
    {
        var copy = new LayerRecord
        {
            Raw = Raw,
            Top = Top,
            Left = Left,
            Bottom = Bottom,
            Right = Right,
            Signature = Signature,
            BlendMode = BlendMode,
            Opacity = Opacity,
            Clipping = Clipping,
            Flags = Flags,
            Filler = Filler,
            Mask = Mask,
            BlendingRanges = BlendingRanges,
            PascalName = PascalName,
            Rest = Rest,
            IsChanged = IsChanged,
        };
        copy.Channels.AddRange(Channels.Select(channel => channel.Copy()));
        copy.Blocks.AddRange(Blocks.Select(block => block.Copy()));
        return copy;
    }
}
