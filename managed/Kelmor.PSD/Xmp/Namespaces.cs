// The namespaces of XMP schemas.
namespace Kelmor.PSD.Xmp;

/// <summary>
/// Namespace names of XML, RDF and the schemas of XMP (XMP Specification Parts 1 and 2).
/// </summary>
public static class Namespaces
{
    public const string Xml = "http://www.w3.org/XML/1998/namespace";
    public const string Rdf = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
    public const string DublinCore = "http://purl.org/dc/elements/1.1/";
    public const string IptcCore = "http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/";
    public const string IptcExtension = "http://iptc.org/std/Iptc4xmpExt/2008-02-29/";
    public const string XmpBasic = "http://ns.adobe.com/xap/1.0/";
    public const string XmpRights = "http://ns.adobe.com/xap/1.0/rights/";
    public const string XmpMm = "http://ns.adobe.com/xap/1.0/mm/";
    public const string XmpDm = "http://ns.adobe.com/xmp/1.0/DynamicMedia/";
    public const string Pdf = "http://ns.adobe.com/pdf/1.3/";
    public const string Photoshop = "http://ns.adobe.com/photoshop/1.0/";
    public const string Dicom = "http://ns.adobe.com/DICOM/";
    public const string XmpGraphics = "http://ns.adobe.com/xap/1.0/g/";
    public const string XmpGraphicsThumbnail = "http://ns.adobe.com/xap/1.0/g/img/";
    public const string XmpTypeFont = "http://ns.adobe.com/xap/1.0/sType/Font#";
    public const string XmpTypeDimensions = "http://ns.adobe.com/xap/1.0/sType/Dimensions#";
    public const string XmpTypeResourceRef = "http://ns.adobe.com/xap/1.0/sType/ResourceRef#";
    public const string XmpTypeResourceEvent = "http://ns.adobe.com/xap/1.0/sType/ResourceEvent#";
    public const string XmpTypeVersion = "http://ns.adobe.com/xap/1.0/sType/Version#";
}
