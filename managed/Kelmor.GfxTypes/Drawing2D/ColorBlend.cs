// Colours along a gradient.
namespace Kelmor.GfxTypes.Drawing2D;

/// <summary>Colours and where they stand, from 0 to 1.</summary>
public sealed class ColorBlend
{
    /// <summary>Makes a blend of one colour.</summary>
    public ColorBlend() : this(1)
    {
    }

    /// <summary>Makes a blend with room for a number of colours.</summary>
    public ColorBlend(int count)
    {
        ArgumentOutOfRangeException.ThrowIfNegative(count);
        Colors = new Color[count];
        Positions = new float[count];
    }

    /// <summary>The colours.</summary>
    public Color[] Colors { get; set; }

    /// <summary>Their positions.</summary>
    public float[] Positions { get; set; }

    internal ColorBlend Clone() => new(0) { Colors = [.. Colors], Positions = [.. Positions] };
}
