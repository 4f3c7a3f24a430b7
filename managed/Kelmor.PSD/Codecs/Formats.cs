// The first bytes by which formats are known.
namespace Kelmor.PSD;

internal static class Formats
{
    /// <summary>The format that begins with these bytes, or Undefined.</summary>
    public static FileFormat Detect(ReadOnlySpan<byte> head)
    {
        if (head.Length >= 6 && head.StartsWith("8BPS"u8) && head[4] == 0 && head[5] is 1 or 2)
        {
            return FileFormat.Psd;
        }
        return head switch
        {
            [0x89, (byte)'P', (byte)'N', (byte)'G', 13, 10, 26, 10, ..] => FileFormat.Png,
            [0xFF, 0xD8, 0xFF, ..] => FileFormat.Jpeg,
            [(byte)'I', (byte)'I', 42 or 43, 0, ..] or [(byte)'M', (byte)'M', 0, 42 or 43, ..] =>
                FileFormat.Tiff,
            [(byte)'G', (byte)'I', (byte)'F', (byte)'8', (byte)'7' or (byte)'9', (byte)'a', ..] =>
                FileFormat.Gif,
            [(byte)'B', (byte)'M', _, _, _, _, 0, 0, 0, 0, ..] => FileFormat.Bmp,
            [0, 0, 0, 12, (byte)'j', (byte)'P', (byte)' ', (byte)' ', ..]
            or [0xFF, 0x4F, 0xFF, 0x51, ..] => FileFormat.Jpeg2000,
            [
                (byte)'R',
                (byte)'I',
                (byte)'F',
                (byte)'F',
                _,
                _,
                _,
                _,
                (byte)'W',
                (byte)'E',
                (byte)'B',
                (byte)'P',
                ..,
            ] => FileFormat.Webp,
            [(byte)'%', (byte)'!', (byte)'P', (byte)'S', ..] => FileFormat.Eps,
            [(byte)'%', (byte)'P', (byte)'D', (byte)'F', ..] => FileFormat.Ai,
            _ => FileFormat.Undefined,
        };
    }
}
