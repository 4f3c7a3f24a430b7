// Images in memory.
namespace Kelmor.GfxTypes;

/// <summary>Quarter turns to the right, then a mirroring; each has two names.</summary>
public enum RotateFlipType
{
    /// <summary>As it is.</summary>
    RotateNoneFlipNone = 0,

    /// <summary>A quarter turn.</summary>
    Rotate90FlipNone = 1,

    /// <summary>A half turn.</summary>
    Rotate180FlipNone = 2,

    /// <summary>Three quarter turns.</summary>
    Rotate270FlipNone = 3,

    /// <summary>Mirrored from left to right.</summary>
    RotateNoneFlipX = 4,

    /// <summary>A quarter turn, then mirrored from left to right.</summary>
    Rotate90FlipX = 5,

    /// <summary>A half turn, then mirrored from left to right.</summary>
    Rotate180FlipX = 6,

    /// <summary>Three quarter turns, then mirrored from left to right.</summary>
    Rotate270FlipX = 7,

    /// <summary>Mirrored from top to bottom.</summary>
    RotateNoneFlipY = Rotate180FlipX,

    /// <summary>A quarter turn, then mirrored from top to bottom.</summary>
    Rotate90FlipY = Rotate270FlipX,

    /// <summary>A half turn, then mirrored from top to bottom.</summary>
    Rotate180FlipY = RotateNoneFlipX,

    /// <summary>Three quarter turns, then mirrored from top to bottom.</summary>
    Rotate270FlipY = Rotate90FlipX,

    /// <summary>Mirrored both ways.</summary>
    RotateNoneFlipXY = Rotate180FlipNone,

    /// <summary>A quarter turn, then mirrored both ways.</summary>
    Rotate90FlipXY = Rotate270FlipNone,

    /// <summary>A half turn, then mirrored both ways.</summary>
    Rotate180FlipXY = RotateNoneFlipNone,

    /// <summary>Three quarter turns, then mirrored both ways.</summary>
    Rotate270FlipXY = Rotate90FlipNone,
}

/// <summary>An image with a size and a resolution.</summary>
public abstract class Image : IDisposable
{
    /// <summary>Pixels from left to right.</summary>
    public abstract int Width { get; }

    /// <summary>Pixels from top to bottom.</summary>
    public abstract int Height { get; }

    /// <summary>Width and height.</summary>
    public Size Size => new(Width, Height);

    /// <summary>Pixels an inch from left to right.</summary>
    public float HorizontalResolution { get; protected set; } = 96f;

    /// <summary>Pixels an inch from top to bottom.</summary>
    public float VerticalResolution { get; protected set; } = 96f;

    /// <summary>Turns and mirrors the image.</summary>
    public abstract void RotateFlip(RotateFlipType rotateFlipType);

    /// <summary>Ends the use of the image.</summary>
    public void Dispose()
    {
        Dispose(true);
        GC.SuppressFinalize(this);
    }

    /// <summary>For images that hold something beside memory.</summary>
    protected virtual void Dispose(bool disposing)
    {
    }
}

/// <summary>An image of pixels of four 8-bit channels.</summary>
public sealed class Bitmap : Image
{
    private int[] _pixels;
    private int _width;
    private int _height;

    /// <summary>Makes a transparent bitmap.</summary>
    public Bitmap(int width, int height)
    {
        ArgumentOutOfRangeException.ThrowIfNegativeOrZero(width);
        ArgumentOutOfRangeException.ThrowIfNegativeOrZero(height);
        if ((long)width * height > Array.MaxLength)
        {
            throw new ArgumentException($"A bitmap of {width} by {height} pixels is too large.");
        }
        _width = width;
        _height = height;
        _pixels = new int[width * height];
    }

    /// <inheritdoc/>
    public override int Width => _width;

    /// <inheritdoc/>
    public override int Height => _height;

    /// <summary>The colour of a pixel.</summary>
    public Color GetPixel(int x, int y) => Color.FromArgb(_pixels[IndexOf(x, y)]);

    /// <summary>Sets the colour of a pixel.</summary>
    public void SetPixel(int x, int y, Color color) => _pixels[IndexOf(x, y)] = color.ToArgb();

    /// <summary>
    /// All pixels, row by row, each as one number with alpha in the highest byte.
    /// </summary>
    public int[] GetArgb32Pixels() => [.. _pixels];

    /// <summary>Sets all pixels.</summary>
    public void SetArgb32Pixels(int[] pixels)
    {
        ArgumentNullException.ThrowIfNull(pixels);
        if (pixels.Length != _pixels.Length)
        {
            throw new ArgumentException(
                $"The bitmap has {_pixels.Length} pixels, not {pixels.Length}.");
        }
        pixels.CopyTo(_pixels, 0);
    }

    /// <summary>Sets the pixels an inch.</summary>
    public void SetResolution(float xDpi, float yDpi)
    {
        HorizontalResolution = xDpi;
        VerticalResolution = yDpi;
    }

    /// <summary>A bitmap like this one.</summary>
    public Bitmap Clone()
    {
        var copy = new Bitmap(_width, _height);
        _pixels.CopyTo(copy._pixels, 0);
        copy.SetResolution(HorizontalResolution, VerticalResolution);
        return copy;
    }

    /// <inheritdoc/>
    public override void RotateFlip(RotateFlipType rotateFlipType)
    {
        for (int turn = (int)rotateFlipType & 3; turn > 0; turn--)
        {
            Rotate90();
        }
        if (((int)rotateFlipType & 4) != 0)
        {
            for (int row = 0; row < _height; row++)
            {
                Array.Reverse(_pixels, row * _width, _width);
            }
        }
    }

    private void Rotate90()
    {
        int[] turned = new int[_pixels.Length];
        for (int y = 0; y < _height; y++)
        {
            for (int x = 0; x < _width; x++)
            {
                turned[(x * _height) + (_height - 1 - y)] = _pixels[(y * _width) + x];
            }
        }
        (_pixels, _width, _height) = (turned, _height, _width);
        (HorizontalResolution, VerticalResolution) = (VerticalResolution, HorizontalResolution);
    }

    private int IndexOf(int x, int y)
    {
        ArgumentOutOfRangeException.ThrowIfGreaterThanOrEqual((uint)x, (uint)_width, nameof(x));
        ArgumentOutOfRangeException.ThrowIfGreaterThanOrEqual((uint)y, (uint)_height, nameof(y));
        return (y * _width) + x;
    }
}
