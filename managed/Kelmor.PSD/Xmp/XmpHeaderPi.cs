// The processing instruction that opens an XMP packet.
namespace Kelmor.PSD.Xmp;

/// <summary>The opening of an XMP packet (XMP Specification Part 1, 7.3.2).</summary>
public sealed class XmpHeaderPi : IXmlValue, IEquatable<XmpHeaderPi>
{
    // The identifier that every packet carries, so that scanners find packets in unknown files.
    private const string PacketGuid = "W5M0MpCehiHzreSzNTczkc9d";

    /// <summary>A header with the identifier of the XMP specification.</summary>
    public XmpHeaderPi()
        : this(PacketGuid) { }

    /// <summary>A header with an identifier of its own.</summary>
    /// <param name="guid">The identifier, without quotation marks.</param>
    public XmpHeaderPi(string guid)
    {
        ArgumentNullException.ThrowIfNull(guid);
        Guid = guid;
    }

    /// <summary>
    /// The instruction as it stands in a packet; the byte-order mark stands between the first
    /// quotes.
    /// </summary>
    public string GetXmlValue() => $"<?xpacket begin=\"\uFEFF\" id=\"{Guid}\"?>";

    /// <summary>True when both carry the same identifier.</summary>
    public bool Equals(XmpHeaderPi? other) => other is not null && Guid == other.Guid;

    /// <summary>The packet's identifier.</summary>
    public string Guid { get; set; }

    public override bool Equals(object? obj) => Equals(obj as XmpHeaderPi);

    public override int GetHashCode() => Guid.GetHashCode(StringComparison.Ordinal);
}
