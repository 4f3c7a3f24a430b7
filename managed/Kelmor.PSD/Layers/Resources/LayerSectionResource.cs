// The part of a record in a group: "lsct", and "lsdk" for groups nested deeper than five.
using System.Buffers.Binary;
using Kelmor.PSD.FileFormats.Core.Blending;

namespace Kelmor.PSD.FileFormats.Psd.Layers.LayerResources;

/// <summary>
/// The head or the end mark of a group (Adobe Photoshop File Formats Specification, Section divider
/// setting).
/// </summary>
public sealed class LayerSectionResource : LayerResource
{
    private const int WithBlendMode = 12;

    /// <summary>
    /// A block for the head of an open group, or with <see cref="SectionType"/> changed, for
    /// others.
    /// </summary>
    public LayerSectionResource()
        : this(
            TaggedBlocks.Signature,
            TaggedBlocks.Code("lsct"),
            Build(LayerSectionType.OpenFolder, null)
        )
    { }

    internal LayerSectionResource(uint signature, uint key, ReadOnlyMemory<byte> data)
        : base(signature, key, data) { }

    /// <summary>The part that the record plays.</summary>
    public LayerSectionType SectionType
    {
        get =>
            Data.Length >= 4
                ? (LayerSectionType)BinaryPrimitives.ReadInt32BigEndian(Data.Span)
                : LayerSectionType.Other;
        set
        {
            var bytes = AtLeast(4);
            BinaryPrimitives.WriteInt32BigEndian(bytes, (int)value);
            Data = bytes;
        }
    }

    /// <summary>Blend mode of the group; Absent when the block has none.</summary>
    public BlendMode BlendModeKey
    {
        get =>
            Data.Length >= WithBlendMode
                ? BlendModes.Known(BinaryPrimitives.ReadInt32BigEndian(Data.Span[8..]))
                : BlendMode.Absent;
        set
        {
            var bytes = AtLeast(WithBlendMode);
            BinaryPrimitives.WriteUInt32BigEndian(bytes.AsSpan(4), TaggedBlocks.Signature);
            BinaryPrimitives.WriteInt32BigEndian(bytes.AsSpan(8), (int)value);
            Data = bytes;
        }
    }

    /// <summary>Kind of the group.</summary>
    public LayerSectionSubtype Subtype =>
        Data.Length >= 16
            ? (LayerSectionSubtype)BinaryPrimitives.ReadInt32BigEndian(Data.Span[12..])
            : LayerSectionSubtype.Normal;

    internal static byte[] Build(LayerSectionType type, BlendMode? mode)
    {
        var bytes = new byte[mode is null ? 4 : WithBlendMode];
        BinaryPrimitives.WriteInt32BigEndian(bytes, (int)type);
        if (mode is { } key)
        {
            BinaryPrimitives.WriteUInt32BigEndian(bytes.AsSpan(4), TaggedBlocks.Signature);
            BinaryPrimitives.WriteInt32BigEndian(bytes.AsSpan(8), (int)key);
        }
        return bytes;
    }
}
