// A whole XMP packet.
namespace Kelmor.PSD.Xmp;

/// <summary>A packet of metadata, kept as the XML text that a file holds.</summary>
public class XmpPacketWrapper : IXmlValue
{
    private readonly string text;

    /// <summary>An empty packet.</summary>
    public XmpPacketWrapper()
        : this(
            "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"/></x:xmpmeta>"
        )
    { }

    internal XmpPacketWrapper(string text) => this.text = text;

    /// <summary>The opening of the packet.</summary>
    public XmpHeaderPi HeaderPi { get; } = new();

    /// <summary>The end of the packet.</summary>
    public XmpTrailerPi TrailerPi { get; } = new();

    /// <summary>The packet as XML text.</summary>
    public string GetXmlValue() =>
        text.StartsWith("<?xpacket", StringComparison.Ordinal)
            ? text
            : HeaderPi.GetXmlValue() + text + TrailerPi.GetXmlValue();
}
