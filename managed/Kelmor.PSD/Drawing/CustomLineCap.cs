// An end of a line with a form of its own.
namespace Kelmor.PSD;

/// <summary>A form of its own for the end of a line.</summary>
public class CustomLineCap
{
    private LineCap startCap;
    private LineCap endCap;

    /// <summary>A cap without outline that keeps the line's own end.</summary>
    public CustomLineCap() { }

    /// <summary>Form of the ends of the cap's own outline.</summary>
    /// <exception cref="ArgumentException">A cap cannot end in an anchor or in another cap of its
    /// own form.</exception>
    public void SetStrokeCaps(LineCap startCap, LineCap endCap)
    {
        VerifyPlain(startCap, nameof(startCap));
        VerifyPlain(endCap, nameof(endCap));
        (this.startCap, this.endCap) = (startCap, endCap);
    }

    /// <summary>Form of the ends of the cap's own outline.</summary>
    public void GetStrokeCaps(out LineCap startCap, out LineCap endCap) =>
        (startCap, endCap) = (this.startCap, this.endCap);

    /// <summary>How lines of the cap's outline meet.</summary>
    public LineJoin StrokeJoin { get; set; }

    /// <summary>Form of the line's end that the cap sits on.</summary>
    public LineCap BaseCap { get; set; }

    /// <summary>Distance between the cap and the line, in units of the line's width.</summary>
    public float BaseInset { get; set; }

    /// <summary>Size of the cap, 1 for the width of the line.</summary>
    public float WidthScale { get; set; } = 1;

    private static void VerifyPlain(LineCap cap, string name)
    {
        if (cap is not (LineCap.Flat or LineCap.Square or LineCap.Round or LineCap.Triangle))
        {
            throw new ArgumentException($"An outline cannot end in {cap}.", name);
        }
    }
}
