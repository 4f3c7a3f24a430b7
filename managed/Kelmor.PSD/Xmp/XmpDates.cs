// Brings the dates of change in a packet up to date.
using System.Globalization;
using System.Text.RegularExpressions;

namespace Kelmor.PSD.Xmp;

/// <summary>
/// The properties ModifyDate and MetadataDate of the basic schema (XMP Specification Part 1, 8.4),
/// as attributes or as elements; older programs call the schema "xap".
/// </summary>
internal static partial class XmpDates
{
    /// <summary>The packet with the present date; one without dates stays as it is.</summary>
    public static XmpPacketWrapper Renewed(XmpPacketWrapper packet)
    {
        var now = DateTimeOffset.Now.ToString(
            "yyyy-MM-dd'T'HH:mm:sszzz",
            CultureInfo.InvariantCulture
        );
        return new XmpPacketWrapper(Dates().Replace(packet.GetXmlValue(), now));
    }

    [GeneratedRegex("""(?<=[\s<](?:xmp|xap):(?:ModifyDate|MetadataDate)(?:=["']|>))[^<"']*""")]
    private static partial Regex Dates();
}
