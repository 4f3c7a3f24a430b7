// A layer: its record's fields as properties.
using Kelmor.PSD.FileFormats.Core.Blending;
using Kelmor.PSD.FileFormats.Psd.Layers.LayerEffects;
using Kelmor.PSD.FileFormats.Psd.Layers.LayerResources;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

/// <summary>
/// A layer of a document (Adobe Photoshop File Formats Specification, Layer Records).
/// </summary>
public partial class Layer : RasterCachedImage
{
    /// <summary>A layer without pixels at the document's origin.</summary>
    public Layer()
        : this(new LayerRecord(), LayerDefaults.Header)
    {
        Name = "";
    }

    /// <summary>A layer with the pixels of an image.</summary>
    /// <param name="image">Any pixel image; its pixels are copied.</param>
    /// <param name="disposeImage">True: the image is disposed of afterwards.</param>
    public Layer(RasterImage image, bool disposeImage)
        : this()
    {
        ArgumentNullException.ThrowIfNull(image);
        FillFrom(image);
        if (disposeImage)
        {
            image.Dispose();
        }
    }

    /// <summary>A layer with the pixels of an image in a stream.</summary>
    /// <param name="stream">An image of a format that can be loaded.</param>
    public Layer(Stream stream)
        : this()
    {
        using var image = Load(stream);
        FillFrom(
            image as RasterImage
                ?? throw new ArgumentException("The stream holds no pixel image.", nameof(stream))
        );
    }

    /// <summary>An opaque layer from its channels.</summary>
    /// <param name="bounds">Rectangle in the document, in pixels.</param>
    /// <param name="redBytes">One byte for each pixel, row by row; copied.</param>
    /// <param name="greenBytes">The same for green.</param>
    /// <param name="blueBytes">The same for blue.</param>
    /// <param name="name">Name.</param>
    /// <exception cref="ArgumentException">A channel has another number of bytes than the rectangle
    /// has pixels.</exception>
    public Layer(
        Rectangle bounds,
        byte[] redBytes,
        byte[] greenBytes,
        byte[] blueBytes,
        string name
    )
        : this()
    {
        FillFrom(bounds, redBytes, greenBytes, blueBytes);
        Name = name;
    }

    /// <summary>Writes the layer alone to a stream in the format of the options.</summary>
    /// <param name="stream">Written from its present position on; it need not be seekable.</param>
    /// <param name="optionsBase">Options; null writes a PSD document with this one layer.</param>
    /// <param name="boundsRectangle">The part, in pixels of the layer; Empty for the whole
    /// layer.</param>
    public override void Save(
        Stream stream,
        ImageOptionsBase? optionsBase,
        Rectangle boundsRectangle
    ) => base.Save(stream, optionsBase, boundsRectangle);

    /// <summary>A copy that belongs to no document and changes on its own.</summary>
    public Layer ShallowCopy()
    {
        VerifyNotDisposed();
        return LayerKinds.Create(Record.Copy(), Header);
    }

    /// <summary>Gives the layer a mask in place of the one it has.</summary>
    /// <param name="layerMask">The mask, or null to take the present one away.</param>
    public void AddLayerMask(LayerMaskData? layerMask) => throw NotYet.Member();

    /// <summary>Draws this layer onto another one and leaves that as the result.</summary>
    public void MergeLayerTo(Layer layerToMergeInto) => throw NotYet.Member();

    /// <summary>Puts the pixels of an image into this layer, which grows where it must.</summary>
    /// <param name="location">Place in the layer's own pixels.</param>
    /// <param name="image">Any pixel image.</param>
    public void DrawImage(Point location, RasterImage image) =>
        LayerDrawing.Draw(this, location, image);

    /// <summary>
    /// The tagged blocks of the layer, in file order; assigning takes the blocks of the array.
    /// </summary>
    public LayerResource[] Resources
    {
        get => [.. Record.Blocks];
        set
        {
            VerifyNotDisposed();
            ArgumentNullException.ThrowIfNull(value);
            Record.Blocks.Clear();
            Record.Blocks.AddRange(value);
            Watch();
            Touch();
        }
    }

    /// <summary>True when the layer has transparency of its own.</summary>
    public override bool HasAlpha => FindChannel(ChannelIds.Transparency) is not null;

    /// <summary>The full name.</summary>
    public string Name
    {
        get => Find<LuniResource>("luni")?.Name ?? PascalText();
        set => Rename(value);
    }

    /// <summary>Effects and other settings of blending.</summary>
    public BlendingOptions BlendingOptions => new(this);

    /// <summary>The full name.</summary>
    public string DisplayName
    {
        get => Name;
        set => Rename(value);
    }

    /// <summary>Opacity of the layer without its effects, 0 to 255.</summary>
    /// <exception cref="ArgumentOutOfRangeException">The value is outside of 0 to 255.</exception>
    public int FillOpacity
    {
        get => Find<IopaResource>("iOpa")?.FillOpacity ?? 255;
        set
        {
            if (value is < 0 or > 255)
            {
                throw new ArgumentOutOfRangeException(
                    nameof(value),
                    $"The fill opacity must lie between 0 and 255, not {value}."
                );
            }
            if (value != FillOpacity)
            {
                FindOrAdd("iOpa", () => new IopaResource()).FillOpacity = (byte)value;
            }
        }
    }

    /// <summary>Date on which the layer was made; the earliest date when it is not known.</summary>
    public DateTime LayerCreationDateTime => LayerMetadata.CreationDate(Record);

    /// <summary>Colour mark in the list of layers.</summary>
    public SheetColorHighlightEnum SheetColorHighlight
    {
        get => Find<LclrResource>("lclr")?.Color ?? SheetColorHighlightEnum.NoColor;
        set
        {
            if (value != SheetColorHighlight)
            {
                FindOrAdd("lclr", () => new LclrResource()).Color = value;
            }
        }
    }

    /// <summary>Upper edge in the document; setting it moves the pixels, not the mask.</summary>
    public int Top
    {
        get => Record.Top;
        set => MoveTo(Record.Left, value);
    }

    /// <summary>Left edge in the document; setting it moves the pixels, not the mask.</summary>
    public int Left
    {
        get => Record.Left;
        set => MoveTo(value, Record.Top);
    }

    /// <summary>
    /// Lower edge in the document, outside of the layer; setting it moves the pixels, not the mask.
    /// </summary>
    public int Bottom
    {
        get => Record.Bottom;
        set => MoveTo(Record.Left, checked(value - Record.Height));
    }

    /// <summary>
    /// Right edge in the document, outside of the layer; setting it moves the pixels, not the mask.
    /// </summary>
    public int Right
    {
        get => Record.Right;
        set => MoveTo(checked(value - Record.Width), Record.Top);
    }

    /// <summary>Number of channels, transparency and masks included.</summary>
    public int ChannelsCount => Record.Channels.Count;

    /// <summary>The channels, in file order.</summary>
    public ChannelInformation[] ChannelInformation => [.. Record.Channels];

    /// <summary>"8BIM" as a big-endian number.</summary>
    public int BlendModeSignature => unchecked((int)Record.Signature);

    /// <summary>Blend mode; Absent for a key that is not known, which is kept.</summary>
    public virtual BlendMode BlendModeKey
    {
        get => BlendModes.Known(Record.BlendMode);
        set
        {
            if (!Enum.IsDefined(value) || value == BlendMode.Absent)
            {
                throw new ArgumentOutOfRangeException(
                    nameof(value),
                    $"A layer cannot have the blend mode {value}."
                );
            }
            Set((int)value, Record.BlendMode, mode => Record.BlendMode = mode);
        }
    }

    /// <summary>Opacity, 0 transparent to 255 opaque.</summary>
    public byte Opacity
    {
        get => Record.Opacity;
        set => Set(value, Record.Opacity, opacity => Record.Opacity = opacity);
    }

    /// <summary>
    /// 0: a layer of its own; 1: clipped to the next layer below that is not clipped.
    /// </summary>
    public byte Clipping
    {
        get => Record.Clipping;
        set => Set(value, Record.Clipping, clipping => Record.Clipping = clipping);
    }

    /// <summary>Flags as stored: the bit Visible is set when the layer is hidden.</summary>
    public LayerFlags Flags
    {
        get => (LayerFlags)Record.Flags;
        set => Set((byte)value, Record.Flags, flags => Record.Flags = flags);
    }

    /// <summary>A byte that should be zero.</summary>
    public byte Filler
    {
        get => Record.Filler;
        set => Set(value, Record.Filler, filler => Record.Filler = filler);
    }

    /// <summary>Bytes of the layer's record.</summary>
    public int Length => Record.Raw.Length;

    /// <summary>Bytes of masks, ranges, name and blocks in the layer's record.</summary>
    public int ExtraLength =>
        Math.Max(0, Record.Raw.Length - LayerRecordSize.Head(Record, Header.IsBig));

    /// <summary>Place and flags of the raster mask, or null.</summary>
    public LayerMaskData? LayerMaskData => LayerMaskData.Create(Record.Mask);

    /// <summary>Blending ranges.</summary>
    public LayerBlendingRangesData LayerBlendingRangesData => new(Record.BlendingRanges);

    /// <summary>Bits of a pixel, all channels but the masks together.</summary>
    public override int BitsPerPixel =>
        Header.Depth
        * Record.Channels.Count(channel => channel.ChannelID >= ChannelIds.Transparency);

    /// <summary>Height in pixels.</summary>
    public override int Height => Record.Height;

    /// <summary>Width in pixels.</summary>
    public override int Width => Record.Width;

    /// <summary>Options that the layer was loaded with, or null.</summary>
    public LoadOptions? LayerOptions { get; internal set; }

    /// <summary>The layer's own switch; a visible layer of a hidden group is not seen.</summary>
    public bool IsVisible
    {
        get => (Flags & LayerFlags.Visible) == 0;
        set => Flags = value ? Flags & ~LayerFlags.Visible : Flags | LayerFlags.Visible;
    }

    /// <summary>True when the layer and all groups around it are visible.</summary>
    public bool IsVisibleInGroup => IsVisible && (Parent?.IsVisibleInGroup ?? true);

    /// <summary>What of the layer is protected.</summary>
    public LayerLockType LayerLock
    {
        get => Find<LspfResource>("lspf")?.Locks ?? LayerLockType.NotLocked;
        set
        {
            if (value != LayerLock)
            {
                FindOrAdd("lspf", () => new LspfResource()).Locks = value;
            }
        }
    }

    /// <summary>True: the layer and those clipped to it are blended as one.</summary>
    public bool BlendClippedElements
    {
        get => Find<ClblResource>("clbl")?.BlendClippedElements ?? true;
        set
        {
            if (value != BlendClippedElements)
            {
                FindOrAdd("clbl", () => new ClblResource()).BlendClippedElements = value;
            }
        }
    }
}
