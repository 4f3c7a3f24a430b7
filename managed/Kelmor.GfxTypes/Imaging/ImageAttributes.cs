// How colours change while an image is drawn.
namespace Kelmor.GfxTypes.Imaging;

/// <summary>A replacement table, a colour matrix and a gamma, applied in this order.</summary>
public sealed class ImageAttributes : IDisposable
{
    private ColorMap[] _remapTable = [];

    /// <summary>The colour matrix; null for none.</summary>
    public ColorMatrix? ColorMatrix { get; private set; }

    /// <summary>The exponent of each colour channel; 1 for none.</summary>
    public float Gamma { get; private set; } = 1f;

    /// <summary>Sets the colour matrix.</summary>
    public void SetColorMatrix(ColorMatrix colorMatrix)
    {
        ArgumentNullException.ThrowIfNull(colorMatrix);
        ColorMatrix = colorMatrix;
    }

    /// <summary>Takes the colour matrix away.</summary>
    public void ClearColorMatrix() => ColorMatrix = null;

    /// <summary>Sets the gamma.</summary>
    public void SetGamma(float gamma)
    {
        if (!float.IsFinite(gamma) || gamma <= 0f)
        {
            throw new ArgumentOutOfRangeException(nameof(gamma), gamma, "A gamma is above 0.");
        }
        Gamma = gamma;
    }

    /// <summary>Takes the gamma away.</summary>
    public void ClearGamma() => Gamma = 1f;

    /// <summary>Sets the colours to replace.</summary>
    public void SetRemapTable(ColorMap[] map)
    {
        ArgumentNullException.ThrowIfNull(map);
        _remapTable = [.. map];
    }

    /// <summary>Leaves all colours in their places.</summary>
    public void ClearRemapTable() => _remapTable = [];

    /// <summary>The colours to replace.</summary>
    public ColorMap[] GetRemapTable() => [.. _remapTable];

    /// <summary>The colour after all changes.</summary>
    public Color Apply(Color color)
    {
        ColorMap? entry = Array.Find(_remapTable, e => e.OldColor.ToArgb() == color.ToArgb());
        Color result = entry?.NewColor ?? color;
        result = ColorMatrix?.Apply(result) ?? result;
        return Gamma == 1f
            ? result
            : Color.FromArgb(
                result.A, Corrected(result.R), Corrected(result.G), Corrected(result.B));
    }

    /// <summary>Attributes like these.</summary>
    public ImageAttributes Clone() => new()
    {
        _remapTable = [.. _remapTable],
        ColorMatrix = ColorMatrix,
        Gamma = Gamma,
    };

    /// <summary>Ends the use of the attributes, which hold nothing.</summary>
    public void Dispose()
    {
    }

    private int Corrected(byte channel) =>
        (int)MathF.Round(MathF.Pow(channel / 255f, Gamma) * 255f);
}
