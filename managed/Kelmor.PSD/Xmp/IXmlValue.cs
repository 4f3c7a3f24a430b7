// What can be written into an XMP packet.
namespace Kelmor.PSD.Xmp;

/// <summary>A value with an XML form.</summary>
public interface IXmlValue
{
    /// <summary>The value as XML text.</summary>
    string GetXmlValue();
}
