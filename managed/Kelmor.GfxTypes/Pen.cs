// What lines are drawn with.
namespace Kelmor.GfxTypes;

/// <summary>Draws lines of a width with a brush.</summary>
public sealed class Pen : IDisposable
{
    /// <summary>Makes a pen of a colour, one unit wide.</summary>
    public Pen(Color color) : this(color, 1f)
    {
    }

    /// <summary>Makes a pen of a colour and a width.</summary>
    public Pen(Color color, float width) : this(new SolidBrush(color), width)
    {
    }

    /// <summary>Makes a pen of a brush and a width.</summary>
    public Pen(Brush brush, float width)
    {
        ArgumentNullException.ThrowIfNull(brush);
        Brush = brush;
        Width = width;
    }

    /// <summary>What the line is filled with.</summary>
    public Brush Brush { get; set; }

    /// <summary>The colour; not set when the brush has more than one.</summary>
    public Color Color
    {
        get => (Brush as SolidBrush)?.Color ?? Color.Empty;
        set => Brush = new SolidBrush(value);
    }

    /// <summary>Width of the line.</summary>
    public float Width { get; set; }

    /// <summary>Lengths of dashes and gaps in widths of the line; empty for a solid line.</summary>
    public float[] DashPattern { get; set; } = [];

    /// <summary>Distance from the start of the pattern to the start of the line.</summary>
    public float DashOffset { get; set; }

    /// <summary>How far a sharp corner may reach out, in widths of the line.</summary>
    public float MiterLimit { get; set; } = 10f;

    /// <summary>A pen like this one, with a brush of its own.</summary>
    public Pen Clone() => new(Brush.Clone(), Width)
    {
        DashPattern = [.. DashPattern],
        DashOffset = DashOffset,
        MiterLimit = MiterLimit,
    };

    /// <summary>Ends the use of the pen and its brush.</summary>
    public void Dispose() => Brush.Dispose();
}
