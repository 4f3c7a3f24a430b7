// The character set of layer names in their old form.
using System.Text;

namespace Kelmor.PSD.FileFormats.Psd.Layers;

/// <summary>Mac OS Roman (the mapping that Unicode publishes as ROMAN.TXT).</summary>
internal static class MacRoman
{
    // Characters of the bytes 128 to 255.
    private const string Upper =
        "ÄÅÇÉÑÖÜáàâäãåçéèêëíìîïñóòôöõúùûü†°¢£§•¶ß®©™´¨≠ÆØ∞±≤≥¥µ∂∑∏π∫ªºΩæø¿¡¬√ƒ≈∆«»…\u00A0ÀÃÕŒœ–—“”‘’÷◊ÿŸ⁄€‹›ﬁﬂ‡·‚„‰ÂÊÁËÈÍÎÏÌÓÔ\uF8FFÒÚÛÙıˆ˜¯˘˙˚¸˝˛ˇ";

    public static string Decode(ReadOnlySpan<byte> bytes)
    {
        var text = new StringBuilder(bytes.Length);
        foreach (var value in bytes)
        {
            text.Append(value < 128 ? (char)value : Upper[value - 128]);
        }
        return text.ToString();
    }

    /// <summary>At most 255 bytes; what the set lacks becomes a question mark.</summary>
    public static byte[] Encode(string text)
    {
        var bytes = new byte[Math.Min(text.Length, 255)];
        for (var i = 0; i < bytes.Length; i++)
        {
            var index = text[i] < 128 ? text[i] - 128 : Upper.IndexOf(text[i]);
            bytes[i] =
                text[i] < 128 ? (byte)text[i]
                : index < 0 ? (byte)'?'
                : (byte)(index + 128);
        }
        return bytes;
    }

    /// <summary>Length byte, characters, zeros up to a multiple of four bytes.</summary>
    public static byte[] EncodePascal(string text)
    {
        var name = Encode(text);
        var bytes = new byte[name.Length + 4 & ~3];
        bytes[0] = (byte)name.Length;
        name.CopyTo(bytes, 1);
        return bytes;
    }
}
