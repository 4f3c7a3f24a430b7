// What areas and strokes are painted with.
using Kelmor.GfxTypes.Drawing2D;

namespace Kelmor.GfxTypes;

/// <summary>Paints the inside of shapes.</summary>
public abstract class Brush : IDisposable
{
    /// <summary>A brush like this one.</summary>
    public abstract Brush Clone();

    /// <summary>Ends the use of the brush.</summary>
    public void Dispose()
    {
        Dispose(true);
        GC.SuppressFinalize(this);
    }

    /// <summary>For brushes that hold something; this one holds nothing.</summary>
    protected virtual void Dispose(bool disposing)
    {
    }
}

/// <summary>A brush of one colour.</summary>
public sealed class SolidBrush : Brush
{
    /// <summary>Makes a brush of a colour.</summary>
    public SolidBrush(Color color) => Color = color;

    /// <summary>The colour.</summary>
    public Color Color { get; set; }

    /// <inheritdoc/>
    public override Brush Clone() => new SolidBrush(Color);
}

/// <summary>A brush of colours that pass into each other along a line.</summary>
public sealed class LinearGradientBrush : Brush
{
    /// <summary>Makes a brush between two points and their colours.</summary>
    public LinearGradientBrush(PointF start, PointF end, Color startColor, Color endColor)
    {
        Start = start;
        End = end;
        InterpolationColors = new ColorBlend(2)
        {
            Colors = [startColor, endColor],
            Positions = [0f, 1f],
        };
    }

    /// <summary>Where the first colour stands.</summary>
    public PointF Start { get; set; }

    /// <summary>Where the last colour stands.</summary>
    public PointF End { get; set; }

    /// <summary>The colours along the line.</summary>
    public ColorBlend InterpolationColors { get; set; }

    /// <inheritdoc/>
    public override Brush Clone() =>
        new LinearGradientBrush(Start, End, Color.Empty, Color.Empty)
        {
            InterpolationColors = InterpolationColors.Clone(),
        };
}
