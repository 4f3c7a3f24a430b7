// One PNG file that is being written.
using System.Runtime.InteropServices;
using Kelmor.PSD.Codecs.Native;
using Kelmor.PSD.CoreExceptions;
using Kelmor.PSD.CoreExceptions.ImageFormats;

namespace Kelmor.PSD.Codecs.Png;

/// <summary>What stands before the pixels of a PNG file.</summary>
internal sealed record PngHead(int Width, int Height, int BitDepth, int ColorType)
{
    public bool IsInterlaced { get; init; }

    public int Level { get; init; }

    public int Filter { get; init; }

    /// <summary>0xAARRGGBB of each entry; empty without a palette.</summary>
    public int[] Palette { get; init; } = [];

    /// <summary>Pixels per metre across and downwards; 0 when not told.</summary>
    public (int X, int Y) Density { get; init; }

    public byte[]? Icc { get; init; }

    public byte[]? Xmp { get; init; }
}

/// <summary>Hands rows to the native writer; the stream gets them block by block.</summary>
internal sealed unsafe class PngFile : IDisposable
{
    private readonly NativeStream stream;
    private nint writer;

    public PngFile(Stream stream, PngHead head)
    {
        this.stream = new NativeStream(stream);
        try
        {
            Begin(head);
        }
        catch
        {
            Dispose();
            throw;
        }
    }

    /// <summary>The next rows.</summary>
    public void Write(ReadOnlySpan<byte> rows, int stride, int count)
    {
        fixed (byte* start = rows)
        {
            Verify(NativeImaging.PngRows(writer, start, stride, count));
        }
    }

    /// <summary>Writes the end, after the last row.</summary>
    public void Finish() => Verify(NativeImaging.PngEnd(writer));

    public void Dispose()
    {
        NativeImaging.PngRelease(writer);
        writer = 0;
        stream.Dispose();
    }

    private void Begin(PngHead head)
    {
        var (colors, alphas) = Split(head.Palette);
        fixed (
            byte* palette = colors,
                alpha = alphas,
                icc = head.Icc,
                xmp = head.Xmp
        )
        {
            var picture = new NativeImaging.PngPicture
            {
                Width = head.Width,
                Height = head.Height,
                BitDepth = head.BitDepth,
                ColorType = head.ColorType,
                Interlaced = head.IsInterlaced ? 1 : 0,
                Level = head.Level,
                Filter = head.Filter,
                PaletteCount = alphas.Length,
                PaletteAlphaCount = Array.FindLastIndex(alphas, value => value < 255) + 1,
                PixelsPerMeterX = head.Density.X,
                PixelsPerMeterY = head.Density.Y,
                Palette = palette,
                PaletteAlpha = alpha,
                Icc = icc,
                IccLength = head.Icc?.Length ?? 0,
                Xmp = xmp,
                XmpLength = head.Xmp?.Length ?? 0,
            };
            var table = stream.Table;
            nint created = 0;
            var status = NativeImaging.PngBegin(&picture, &table, &created);
            writer = created;
            Verify(status);
        }
    }

    private static (byte[] Colors, byte[] Alphas) Split(int[] palette)
    {
        var (colors, alphas) = (new byte[palette.Length * 3], new byte[palette.Length]);
        for (var i = 0; i < alphas.Length; i++)
        {
            var color = Color.FromArgb(palette[i]);
            (colors[i * 3], colors[i * 3 + 1], colors[i * 3 + 2]) = (color.R, color.G, color.B);
            alphas[i] = color.A;
        }
        return (colors, alphas);
    }

    private void Verify(NativeImaging.Status status)
    {
        if (status == NativeImaging.Status.Ok)
        {
            return;
        }
        stream.ThrowFailure();
        if (status == NativeImaging.Status.OutOfMemory)
        {
            throw new LimitMemoryException("There is not enough memory to write the PNG image.");
        }
        var message =
            writer == 0 ? null : Marshal.PtrToStringUTF8((nint)NativeImaging.PngMessage(writer));
        throw new PngImageException(
            "The PNG image cannot be written: "
                + $"{(string.IsNullOrEmpty(message) ? status.ToString() : message)}"
        );
    }
}
