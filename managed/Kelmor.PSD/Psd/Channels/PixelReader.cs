// Turns channels into pixels of 8 bits, without colour profiles.
using Kelmor.PSD.CoreExceptions.ImageFormats;

namespace Kelmor.PSD.FileFormats.Psd.Channels;

internal static class PixelReader
{
    /// <summary>Fills `pixels`, row by row, 0xAARRGGBB each.</summary>
    public static void Read(PixelPlanes planes, Rectangle area, Span<int> pixels)
    {
        var channels = new byte[Math.Max(4, planes.Colors.Length)][];
        for (var i = 0; i < channels.Length; i++)
        {
            channels[i] = new byte[area.Width];
        }
        var alpha = new byte[area.Width];
        Array.Fill(alpha, (byte)255);
        for (var row = 0; row < area.Height; row++)
        {
            for (var i = 0; i < planes.Colors.Length; i++)
            {
                ReadRow(planes, planes.Colors[i], area.X, area.Y + row, channels[i], isLight: true);
            }
            ReadRow(planes, planes.Alpha, area.X, area.Y + row, alpha, isLight: false);
            Combine(planes, channels, alpha, pixels.Slice(row * area.Width, area.Width));
        }
    }

    private static void ReadRow(
        PixelPlanes planes,
        byte[]? plane,
        int x,
        int y,
        byte[] row,
        bool isLight
    )
    {
        if (plane is not null)
        {
            Samples.ReadRow(plane, planes.Layout, x, y, row, isLight);
        }
    }

    private static void Combine(PixelPlanes planes, byte[][] rows, byte[] alpha, Span<int> pixels)
    {
        switch (planes.Mode)
        {
            case ColorModes.Rgb:
            case ColorModes.Multichannel when planes.Colors.Length >= 3:
                CombineRgb(rows, alpha, pixels);
                break;
            case ColorModes.Cmyk:
                CombineCmyk(rows, alpha, pixels);
                break;
            case ColorModes.Lab:
                CombineLab(rows, alpha, pixels);
                break;
            case ColorModes.Indexed:
                CombineIndexed(
                    planes.Palette
                        ?? throw new PsdImageException("The indexed document has no palette."),
                    rows[0],
                    pixels
                );
                break;
            default:
                CombineGray(rows[0], alpha, pixels);
                break;
        }
    }

    private static void CombineRgb(byte[][] rows, byte[] alpha, Span<int> pixels)
    {
        var (red, green, blue) = (rows[0], rows[1], rows[2]);
        for (var i = 0; i < pixels.Length; i++)
        {
            pixels[i] = alpha[i] << 24 | red[i] << 16 | green[i] << 8 | blue[i];
        }
    }

    private static void CombineGray(byte[] gray, byte[] alpha, Span<int> pixels)
    {
        for (var i = 0; i < pixels.Length; i++)
        {
            pixels[i] = alpha[i] << 24 | gray[i] * 0x010101;
        }
    }

    // Ink amounts are stored inverted: 255 is no ink.
    private static void CombineCmyk(byte[][] rows, byte[] alpha, Span<int> pixels)
    {
        for (var i = 0; i < pixels.Length; i++)
        {
            int key = rows[3][i];
            pixels[i] =
                alpha[i] << 24
                | ColorMath.Scaled(rows[0][i], key) << 16
                | ColorMath.Scaled(rows[1][i], key) << 8
                | ColorMath.Scaled(rows[2][i], key);
        }
    }

    private static void CombineLab(byte[][] rows, byte[] alpha, Span<int> pixels)
    {
        for (var i = 0; i < pixels.Length; i++)
        {
            pixels[i] = alpha[i] << 24 | LabColor.ToRgb(rows[0][i], rows[1][i], rows[2][i]);
        }
    }

    private static void CombineIndexed(int[] palette, byte[] indexes, Span<int> pixels)
    {
        for (var i = 0; i < pixels.Length; i++)
        {
            pixels[i] =
                indexes[i] < palette.Length ? palette[indexes[i]] : unchecked((int)0xFF000000);
        }
    }
}
