// The tagged blocks that hold one value.
using System.Buffers.Binary;
using System.Text;

namespace Kelmor.PSD.FileFormats.Psd.Layers.LayerResources;

/// <summary>A block that is kept byte for byte without being understood.</summary>
public sealed class UnknownResource : LayerResource
{
    internal UnknownResource(uint signature, uint key, ReadOnlyMemory<byte> data)
        : base(signature, key, data) { }

    /// <summary>The content.</summary>
    public byte[] GetData() => Data.ToArray();
}

/// <summary>The Unicode name of a layer: "luni".</summary>
public sealed class LuniResource : LayerResource
{
    /// <summary>A block with a name.</summary>
    public LuniResource(string name)
        : this(TaggedBlocks.Signature, TaggedBlocks.Code("luni"), default) => Name = name;

    internal LuniResource(uint signature, uint key, ReadOnlyMemory<byte> data)
        : base(signature, key, data) { }

    /// <summary>The name.</summary>
    public string Name
    {
        get
        {
            if (Data.Length < 4)
            {
                return "";
            }
            var count = Math.Min(
                BinaryPrimitives.ReadUInt32BigEndian(Data.Span),
                (uint)(Data.Length - 4) / 2
            );
            return Encoding.BigEndianUnicode.GetString(Data.Span.Slice(4, (int)count * 2));
        }
        set
        {
            ArgumentNullException.ThrowIfNull(value);
            // The content is padded to whole groups of four bytes.
            var bytes = new byte[4 + ((value.Length * 2 + 3) & ~3)];
            BinaryPrimitives.WriteInt32BigEndian(bytes, value.Length);
            for (var i = 0; i < value.Length; i++)
            {
                BinaryPrimitives.WriteUInt16BigEndian(bytes.AsSpan(4 + i * 2), value[i]);
            }
            Data = bytes;
        }
    }
}

/// <summary>The fill opacity of a layer: "iOpa".</summary>
public sealed class IopaResource : LayerResource
{
    /// <summary>A block for a layer whose fill is opaque.</summary>
    public IopaResource()
        : this(TaggedBlocks.Signature, TaggedBlocks.Code("iOpa"), new byte[] { 255, 0, 0, 0 }) { }

    internal IopaResource(uint signature, uint key, ReadOnlyMemory<byte> data)
        : base(signature, key, data) { }

    /// <summary>Opacity of the layer without its effects, 0 to 255.</summary>
    public byte FillOpacity
    {
        get => Data.Length > 0 ? Data.Span[0] : (byte)255;
        set
        {
            var bytes = AtLeast(4);
            bytes[0] = value;
            Data = bytes;
        }
    }
}

/// <summary>
/// A block that says yes or no in its first byte: "clbl", "infx", "knko" and others.
/// </summary>
public abstract class BooleanResource : LayerResource
{
    private protected BooleanResource(uint signature, uint key, ReadOnlyMemory<byte> data)
        : base(signature, key, data) { }

    /// <summary>The answer.</summary>
    public bool Value
    {
        get => Data.Length > 0 && Data.Span[0] != 0;
        set
        {
            var bytes = AtLeast(4);
            bytes[0] = value ? (byte)1 : (byte)0;
            Data = bytes;
        }
    }
}

/// <summary>Whether clipped layers are blended as one: "clbl".</summary>
public sealed class ClblResource : BooleanResource
{
    /// <summary>A block that says yes.</summary>
    public ClblResource()
        : this(TaggedBlocks.Signature, TaggedBlocks.Code("clbl"), new byte[] { 1, 0, 0, 0 }) { }

    internal ClblResource(uint signature, uint key, ReadOnlyMemory<byte> data)
        : base(signature, key, data) { }

    /// <summary>True: the layer and those clipped to it are blended as one.</summary>
    public bool BlendClippedElements
    {
        get => Value;
        set => Value = value;
    }
}

/// <summary>Whether effects inside are blended as one: "infx".</summary>
public sealed class InfxResource : BooleanResource
{
    internal InfxResource(uint signature, uint key, ReadOnlyMemory<byte> data)
        : base(signature, key, data) { }

    /// <summary>True: inner effects are blended with the layer as one.</summary>
    public bool BlendInteriorElements
    {
        get => Value;
        set => Value = value;
    }
}

/// <summary>Whether a layer knocks out what lies below: "knko".</summary>
public sealed class KnkoResource : BooleanResource
{
    internal KnkoResource(uint signature, uint key, ReadOnlyMemory<byte> data)
        : base(signature, key, data) { }

    /// <summary>True: the layer knocks out.</summary>
    public bool IsKnockout
    {
        get => Value;
        set => Value = value;
    }
}

/// <summary>The number of a layer: "lyid".</summary>
public sealed class LyidResource : LayerResource
{
    internal LyidResource(uint signature, uint key, ReadOnlyMemory<byte> data)
        : base(signature, key, data) { }

    /// <summary>A number that no other layer of the document has.</summary>
    public int Value
    {
        get => Data.Length >= 4 ? BinaryPrimitives.ReadInt32BigEndian(Data.Span) : 0;
        set
        {
            var bytes = AtLeast(4);
            BinaryPrimitives.WriteInt32BigEndian(bytes, value);
            Data = bytes;
        }
    }
}

/// <summary>The colour mark of a layer: "lclr".</summary>
public sealed class LclrResource : LayerResource
{
    /// <summary>A block without a mark.</summary>
    public LclrResource()
        : this(TaggedBlocks.Signature, TaggedBlocks.Code("lclr"), new byte[8]) { }

    internal LclrResource(uint signature, uint key, ReadOnlyMemory<byte> data)
        : base(signature, key, data) { }

    /// <summary>The mark.</summary>
    public SheetColorHighlightEnum Color
    {
        get =>
            Data.Length >= 2
            && (SheetColorHighlightEnum)BinaryPrimitives.ReadInt16BigEndian(Data.Span) is var mark
            && Enum.IsDefined(mark)
                ? mark
                : SheetColorHighlightEnum.NoColor;
        set
        {
            var bytes = AtLeast(8);
            BinaryPrimitives.WriteInt16BigEndian(bytes, (short)value);
            Data = bytes;
        }
    }
}

/// <summary>What of a layer is protected: "lspf".</summary>
public sealed class LspfResource : LayerResource
{
    /// <summary>A block that protects nothing.</summary>
    public LspfResource()
        : this(TaggedBlocks.Signature, TaggedBlocks.Code("lspf"), new byte[4]) { }

    internal LspfResource(uint signature, uint key, ReadOnlyMemory<byte> data)
        : base(signature, key, data) { }

    /// <summary>What is protected.</summary>
    public LayerLockType Locks
    {
        get =>
            Data.Length >= 4
                ? (LayerLockType)BinaryPrimitives.ReadUInt32BigEndian(Data.Span)
                : LayerLockType.NotLocked;
        set
        {
            var bytes = AtLeast(4);
            BinaryPrimitives.WriteUInt32BigEndian(bytes, (uint)value);
            Data = bytes;
        }
    }
}
