// An image resource of a document.
using System.Text;

namespace Kelmor.PSD.FileFormats.Psd;

/// <summary>
/// An image resource (Adobe Photoshop File Formats Specification, Image Resource Blocks).
/// </summary>
public abstract class ResourceBlock
{
    internal const int DefaultSignature = 0x3842494D; // "8BIM"

    private static readonly HashSet<uint> Signatures = new[]
    {
        "8BIM",
        "MeSa",
        "AgHg",
        "PHUT",
        "DCSR",
    }
        .Select(TaggedBlocks.Code)
        .ToHashSet();

    private ReadOnlyMemory<byte> data;

    private protected ResourceBlock(
        int signature,
        short id,
        ReadOnlyMemory<byte> name,
        ReadOnlyMemory<byte> data
    )
    {
        Signature = signature;
        ID = id;
        NameBytes = name;
        this.data = data;
    }

    /// <summary>"8BIM" as a big-endian number; other programs than Photoshop have others.</summary>
    public int Signature { get; }

    /// <summary>Identifier that says what the resource is.</summary>
    public short ID { get; }

    /// <summary>Name, mostly empty.</summary>
    public string Name => Encoding.Latin1.GetString(NameBytes.Span);

    /// <summary>Bytes of the content.</summary>
    public int DataSize => data.Length;

    /// <summary>Writes the resource with its head.</summary>
    public void Save(StreamContainer stream)
    {
        ArgumentNullException.ThrowIfNull(stream);
        var writer = new Writing.SectionWriter(false);
        Writing.ResourceWriter.Write(writer, this);
        writer.CopyTo(stream.Stream);
    }

    internal ReadOnlyMemory<byte> NameBytes { get; }

    /// <summary>The resource as read, with its padding; empty once the content is newer.</summary>
    internal ReadOnlyMemory<byte> Raw { get; set; }

    /// <summary>The content.</summary>
    internal ReadOnlyMemory<byte> Data
    {
        get => data;
        set
        {
            if (!data.Span.SequenceEqual(value.Span))
            {
                data = value;
                Raw = default;
            }
        }
    }

    internal static bool IsSignature(uint code) => Signatures.Contains(code);
}
