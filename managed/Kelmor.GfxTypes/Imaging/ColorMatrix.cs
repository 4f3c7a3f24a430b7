// A linear change of colours.
namespace Kelmor.GfxTypes.Imaging;

/// <summary>
/// Five rows of five: the colour (red, green, blue, alpha, 1) times the matrix is the new colour.
/// </summary>
public sealed class ColorMatrix
{
    private const int Size = 5;

    private readonly float[] _elements = new float[Size * Size];

    /// <summary>Makes the matrix that changes nothing.</summary>
    public ColorMatrix()
    {
        for (int i = 0; i < Size; i++)
        {
            _elements[(i * Size) + i] = 1f;
        }
    }

    /// <summary>Makes a matrix of five rows.</summary>
    public ColorMatrix(float[][] newColorMatrix)
    {
        ArgumentNullException.ThrowIfNull(newColorMatrix);
        if (newColorMatrix.Length != Size || newColorMatrix.Any(row => row?.Length != Size))
        {
            throw new ArgumentException("A colour matrix has five rows of five.");
        }
        for (int row = 0; row < Size; row++)
        {
            newColorMatrix[row].CopyTo(_elements, row * Size);
        }
    }

    /// <summary>Row 0, column 0.</summary>
    public float Matrix00 { get => _elements[0]; set => _elements[0] = value; }

    /// <summary>Row 0, column 1.</summary>
    public float Matrix01 { get => _elements[1]; set => _elements[1] = value; }

    /// <summary>Row 0, column 2.</summary>
    public float Matrix02 { get => _elements[2]; set => _elements[2] = value; }

    /// <summary>Row 0, column 3.</summary>
    public float Matrix03 { get => _elements[3]; set => _elements[3] = value; }

    /// <summary>Row 0, column 4.</summary>
    public float Matrix04 { get => _elements[4]; set => _elements[4] = value; }

    /// <summary>Row 1, column 0.</summary>
    public float Matrix10 { get => _elements[5]; set => _elements[5] = value; }

    /// <summary>Row 1, column 1.</summary>
    public float Matrix11 { get => _elements[6]; set => _elements[6] = value; }

    /// <summary>Row 1, column 2.</summary>
    public float Matrix12 { get => _elements[7]; set => _elements[7] = value; }

    /// <summary>Row 1, column 3.</summary>
    public float Matrix13 { get => _elements[8]; set => _elements[8] = value; }

    /// <summary>Row 1, column 4.</summary>
    public float Matrix14 { get => _elements[9]; set => _elements[9] = value; }

    /// <summary>Row 2, column 0.</summary>
    public float Matrix20 { get => _elements[10]; set => _elements[10] = value; }

    /// <summary>Row 2, column 1.</summary>
    public float Matrix21 { get => _elements[11]; set => _elements[11] = value; }

    /// <summary>Row 2, column 2.</summary>
    public float Matrix22 { get => _elements[12]; set => _elements[12] = value; }

    /// <summary>Row 2, column 3.</summary>
    public float Matrix23 { get => _elements[13]; set => _elements[13] = value; }

    /// <summary>Row 2, column 4.</summary>
    public float Matrix24 { get => _elements[14]; set => _elements[14] = value; }

    /// <summary>Row 3, column 0.</summary>
    public float Matrix30 { get => _elements[15]; set => _elements[15] = value; }

    /// <summary>Row 3, column 1.</summary>
    public float Matrix31 { get => _elements[16]; set => _elements[16] = value; }

    /// <summary>Row 3, column 2.</summary>
    public float Matrix32 { get => _elements[17]; set => _elements[17] = value; }

    /// <summary>Row 3, column 3.</summary>
    public float Matrix33 { get => _elements[18]; set => _elements[18] = value; }

    /// <summary>Row 3, column 4.</summary>
    public float Matrix34 { get => _elements[19]; set => _elements[19] = value; }

    /// <summary>Row 4, column 0.</summary>
    public float Matrix40 { get => _elements[20]; set => _elements[20] = value; }

    /// <summary>Row 4, column 1.</summary>
    public float Matrix41 { get => _elements[21]; set => _elements[21] = value; }

    /// <summary>Row 4, column 2.</summary>
    public float Matrix42 { get => _elements[22]; set => _elements[22] = value; }

    /// <summary>Row 4, column 3.</summary>
    public float Matrix43 { get => _elements[23]; set => _elements[23] = value; }

    /// <summary>Row 4, column 4.</summary>
    public float Matrix44 { get => _elements[24]; set => _elements[24] = value; }

    /// <summary>The colour after the change, each channel cut to 0 to 255.</summary>
    public Color Apply(Color color)
    {
        Span<float> source = [color.R / 255f, color.G / 255f, color.B / 255f, color.A / 255f, 1f];
        Span<int> target = stackalloc int[Size - 1];
        for (int column = 0; column < target.Length; column++)
        {
            float sum = 0f;
            for (int row = 0; row < Size; row++)
            {
                sum += source[row] * _elements[(row * Size) + column];
            }
            target[column] = (int)Math.Clamp(MathF.Round(sum * 255f), 0f, 255f);
        }
        return Color.FromArgb(target[3], target[0], target[1], target[2]);
    }
}
