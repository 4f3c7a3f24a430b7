// Pixels in the forms that the truth about the corpus has.
using System.Text.Json;

namespace Kelmor.PSD.Tests.Corpus;

internal static class PixelBytes
{
    /// <summary>Red, green, blue, alpha of each pixel, row by row.</summary>
    public static byte[] Of(RasterImage image)
    {
        var pixels = image.LoadArgb32Pixels(image.Bounds);
        var bytes = new byte[pixels.Length * 4];
        for (var i = 0; i < pixels.Length; i++)
        {
            bytes[i * 4] = (byte)(pixels[i] >> 16);
            bytes[i * 4 + 1] = (byte)(pixels[i] >> 8);
            bytes[i * 4 + 2] = (byte)pixels[i];
            bytes[i * 4 + 3] = (byte)(pixels[i] >> 24);
        }
        return bytes;
    }

    public static void MakeOpaque(byte[] rgba)
    {
        for (var at = 3; at < rgba.Length; at += 4)
        {
            rgba[at] = 255;
        }
    }

    /// <summary>
    /// Mean absolute difference of colours over white and of alpha, cell by cell.
    /// </summary>
    public static double GridDifference(JsonElement grid, byte[] rgba, Size size)
    {
        var (columns, rows) = (
            grid.GetProperty("gw").GetInt32(),
            grid.GetProperty("gh").GetInt32()
        );
        var colors = grid.GetProperty("rgb_over_white_b64").GetBytesFromBase64();
        var alphas = grid.GetProperty("alpha_b64").GetBytesFromBase64();
        var sum = 0.0;
        for (var row = 0; row < rows; row++)
        {
            for (var column = 0; column < columns; column++)
            {
                var cell = MeanOfCell(rgba, size, columns, rows, column, row);
                var at = row * columns + column;
                for (var channel = 0; channel < 3; channel++)
                {
                    sum += Math.Abs(cell[channel] - colors[at * 3 + channel]);
                }
                sum += Math.Abs(cell[3] - alphas[at]);
            }
        }
        return sum / (columns * rows * 4);
    }

    private static double[] MeanOfCell(
        byte[] rgba,
        Size size,
        int columns,
        int rows,
        int column,
        int row
    )
    {
        var mean = new double[4];
        var count = 0;
        for (var y = row * size.Height / rows; y < (row + 1) * size.Height / rows; y++)
        {
            for (
                var x = column * size.Width / columns;
                x < (column + 1) * size.Width / columns;
                x++
            )
            {
                var at = (y * size.Width + x) * 4;
                var alpha = rgba[at + 3] / 255.0;
                for (var channel = 0; channel < 3; channel++)
                {
                    mean[channel] += rgba[at + channel] * alpha + 255 * (1 - alpha);
                }
                mean[3] += rgba[at + 3];
                count++;
            }
        }
        return Array.ConvertAll(mean, value => value / count);
    }
}
