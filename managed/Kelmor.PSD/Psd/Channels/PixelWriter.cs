// Puts pixels of 8 bits into channels of any depth.
namespace Kelmor.PSD.FileFormats.Psd.Channels;

internal static class PixelWriter
{
    /// <summary>Refuses kinds of documents whose pixels cannot be made from RGB here.</summary>
    /// <exception cref="NotSupportedException">The kind is not supported.</exception>
    public static void VerifySupported(ColorModes mode, int depth)
    {
        if (
            depth == 1
            || mode
                is not (
                    ColorModes.Rgb
                    or ColorModes.Grayscale
                    or ColorModes.Duotone
                    or ColorModes.Cmyk
                )
        )
        {
            throw new NotSupportedException(
                $"Pixels of documents of the mode {mode} with {depth} bits cannot be changed."
            );
        }
    }

    public static bool HasTransparency(ReadOnlySpan<int> pixels)
    {
        foreach (var pixel in pixels)
        {
            if ((uint)pixel < 0xFF000000)
            {
                return true;
            }
        }
        return false;
    }

    /// <summary>Changes the samples of a rectangle.</summary>
    public static void Write(PixelPlanes planes, Rectangle area, ReadOnlySpan<int> pixels)
    {
        var row = new byte[area.Width];
        for (var y = 0; y < area.Height; y++)
        {
            var source = pixels.Slice(y * area.Width, area.Width);
            for (var channel = 0; channel < planes.Colors.Length; channel++)
            {
                Extract(planes.Mode, channel, source, row);
                Samples.WriteRow(
                    planes.Colors[channel],
                    planes.Layout,
                    area.X,
                    area.Y + y,
                    row,
                    isLight: true
                );
            }
            if (planes.Alpha is not null)
            {
                ExtractByte(source, row, 24);
                Samples.WriteRow(
                    planes.Alpha,
                    planes.Layout,
                    area.X,
                    area.Y + y,
                    row,
                    isLight: false
                );
            }
        }
    }

    private static void Extract(
        ColorModes mode,
        int channel,
        ReadOnlySpan<int> source,
        Span<byte> row
    )
    {
        switch (mode)
        {
            case ColorModes.Rgb:
                ExtractByte(source, row, 16 - 8 * channel);
                break;
            case ColorModes.Cmyk:
                for (var i = 0; i < row.Length; i++)
                {
                    // Stored inverted: the number's highest byte is cyan.
                    row[i] = (byte)(
                        255
                        - (
                            Color.FromArgb(source[i]).ToCmyk().ToCmyk32() >> (24 - 8 * channel)
                            & 255
                        )
                    );
                }
                break;
            default:
                for (var i = 0; i < row.Length; i++)
                {
                    row[i] = ColorMath.Luma(source[i]);
                }
                break;
        }
    }

    private static void ExtractByte(ReadOnlySpan<int> source, Span<byte> row, int shift)
    {
        for (var i = 0; i < row.Length; i++)
        {
            row[i] = (byte)(source[i] >> shift);
        }
    }
}
