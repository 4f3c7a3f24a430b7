// The processing instruction that ends an XMP packet.
namespace Kelmor.PSD.Xmp;

/// <summary>The end of an XMP packet (XMP Specification Part 1, 7.3.2).</summary>
public sealed class XmpTrailerPi : IXmlValue, IEquatable<XmpTrailerPi>
{
    /// <summary>The end of a packet that may be changed in place.</summary>
    public XmpTrailerPi()
        : this(true) { }

    /// <summary>The end of a packet.</summary>
    /// <param name="isWritable">True: the packet may be changed in place.</param>
    public XmpTrailerPi(bool isWritable) => IsWritable = isWritable;

    /// <summary>True when the packet may be changed in place.</summary>
    public bool IsWritable { get; set; }

    /// <summary>The instruction as it stands in a packet.</summary>
    public string GetXmlValue() => $"<?xpacket end=\"{(IsWritable ? 'w' : 'r')}\"?>";

    /// <summary>True when both say the same.</summary>
    public bool Equals(XmpTrailerPi? other) => other is not null && IsWritable == other.IsWritable;

    public override bool Equals(object? obj) => Equals(obj as XmpTrailerPi);

    public override int GetHashCode() => IsWritable.GetHashCode();
}
