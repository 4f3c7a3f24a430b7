// A tagged block of a layer or of the whole document.
namespace Kelmor.PSD.FileFormats.Psd.Layers;

/// <summary>
/// A tagged block (Adobe Photoshop File Formats Specification, Additional Layer Information).
/// </summary>
public abstract class LayerResource
{
    private ReadOnlyMemory<byte> data;

    private protected LayerResource(uint signature, uint key, ReadOnlyMemory<byte> data)
    {
        SignatureCode = signature;
        KeyCode = key;
        this.data = data;
    }

    /// <summary>"8BIM" or "8B64" as a big-endian number.</summary>
    public virtual int Signature => unchecked((int)SignatureCode);

    /// <summary>The block's four letters as a big-endian number.</summary>
    public virtual int Key => unchecked((int)KeyCode);

    /// <summary>Bytes of the content.</summary>
    public virtual int Length => data.Length;

    /// <summary>Oldest variant of the format that has this block.</summary>
    public virtual int PsdVersion => 1;

    internal uint SignatureCode { get; }

    internal uint KeyCode { get; }

    /// <summary>The block as read, with its padding; empty once the content is newer.</summary>
    internal ReadOnlyMemory<byte> Raw { get; set; }

    /// <summary>Called after the content has changed.</summary>
    internal Action? Changed { get; set; }

    /// <summary>The content without key and length.</summary>
    internal ReadOnlyMemory<byte> Data
    {
        get => data;
        set
        {
            if (!data.Span.SequenceEqual(value.Span))
            {
                data = value;
                Raw = default;
                Changed?.Invoke();
            }
        }
    }

    /// <summary>Writes the block with key and length.</summary>
    /// <param name="streamContainer">Written from its present position on.</param>
    /// <param name="psdVersion">1 for PSD, 2 for PSB.</param>
    public virtual void Save(StreamContainer streamContainer, int psdVersion)
    {
        ArgumentNullException.ThrowIfNull(streamContainer);
        var writer = new Writing.SectionWriter(psdVersion == (int)Psd.PsdVersion.Psb);
        Writing.TaggedBlockWriter.Write(writer, this, verbatim: false);
        writer.CopyTo(streamContainer.Stream);
    }

    /// <summary>The four letters.</summary>
    public override string ToString() => TaggedBlocks.Letters(KeyCode);

    internal LayerResource Copy()
    {
        var copy = (LayerResource)MemberwiseClone();
        copy.Changed = null;
        return copy;
    }

    /// <summary>The content, at least so long as the fields that are read from it.</summary>
    private protected byte[] AtLeast(int length)
    {
        var bytes = new byte[Math.Max(length, data.Length)];
        data.CopyTo(bytes);
        return bytes;
    }
}
