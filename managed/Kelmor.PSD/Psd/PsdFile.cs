// The sections of a layered document, each with the bytes that it was read from.
using Kelmor.PSD.FileFormats.Psd.Layers;
using Kelmor.PSD.FileFormats.Psd.Layers.LayerResources;

namespace Kelmor.PSD.FileFormats.Psd;

/// <summary>A document taken apart into its five sections.</summary>
internal sealed class PsdFile
{
    public required PsdHeader Header { get; set; }

    /// <summary>Palette, duotone curves, or nothing.</summary>
    public ReadOnlyMemory<byte> ColorModeData { get; set; }

    public List<ResourceBlock> Resources { get; } = [];

    /// <summary>Bytes behind the last resource that form none.</summary>
    public ReadOnlyMemory<byte> ResourceRest { get; set; }

    public required LayerSection Layers { get; set; }

    public required MergedImage Merged { get; set; }
}

/// <summary>Where a document keeps its layers.</summary>
internal enum LayerPlace
{
    /// <summary>In the layer info at the head of the section.</summary>
    LayerInfo,

    /// <summary>In a block behind it, as documents of 16 and 32 bits have it.</summary>
    Block,
}

/// <summary>The layer and mask information section.</summary>
internal sealed class LayerSection
{
    /// <summary>
    /// The whole section without its length, as read; written again while nothing in it has
    /// changed.
    /// </summary>
    public ReadOnlyMemory<byte> Raw { get; set; }

    /// <summary>Layers, bottom to top.</summary>
    public List<Layer> Layers { get; set; } = [];

    /// <summary>
    /// True when the first alpha channel of the merged image is its transparency.
    /// </summary>
    public bool HasMergedTransparency { get; set; }

    public LayerPlace Place { get; set; }

    /// <summary>Key of the block that holds the layers.</summary>
    public LayerResource? PlaceBlock { get; set; }

    /// <summary>Bytes behind the channel data within the layer info.</summary>
    public ReadOnlyMemory<byte> LayerInfoRest { get; set; }

    /// <summary>
    /// Global layer mask info without its length; null when the section ends before.
    /// </summary>
    public ReadOnlyMemory<byte>? GlobalMask { get; set; }

    /// <summary>Blocks behind the global mask info.</summary>
    public List<LayerResource> Blocks { get; } = [];

    /// <summary>Bytes at the end that form no block.</summary>
    public ReadOnlyMemory<byte> Rest { get; set; }

    /// <summary>True when layers were added, removed or moved, or a block was changed.</summary>
    public bool IsChanged { get; set; }

    /// <summary>Chooses the place of the first layers of a document.</summary>
    public void ChoosePlace(int depth)
    {
        GlobalMask ??= ReadOnlyMemory<byte>.Empty;
        if (depth <= 8 || Place == LayerPlace.Block)
        {
            return;
        }
        var (signature, key) = (TaggedBlocks.Signature, TaggedBlocks.LayersOf(depth));
        PlaceBlock = new UnknownResource(signature, key, default);
        // Readers look for it at the head of the blocks, behind the mark of transparency.
        var hasMark = Blocks.Count > 0 && TaggedBlocks.IsTransparencyMark(Blocks[0].KeyCode);
        Blocks.Insert(hasMark ? 1 : 0, PlaceBlock);
        Place = LayerPlace.Block;
    }
}
